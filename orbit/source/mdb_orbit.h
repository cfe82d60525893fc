/// \file mdb_orbit.h
/// An orbit whose state vectors stand in a record database.

#pragma once

#include "orbit/orbit.h"
#include "orbit/source/mdb_state_vectors.h"

template <class T, class S, class I, class P>
class MDB_ORBIT final : public ORBIT<T, S, I, P> {
  public:
    MDB_ORBIT() = default;
    /// Copies the orbit, not the open file.
    MDB_ORBIT(const MDB_ORBIT& other) : ORBIT<T, S, I, P>(other) {}
    MDB_ORBIT& operator=(const MDB_ORBIT& other) { return *this = static_cast<const ORBIT_BASE&>(other); }
    MDB_ORBIT& operator=(const ORBIT_BASE& amdb_orbit) override {
        this->CopyFrom(amdb_orbit, "virtual MDB_ORBIT<T,S,I,P>& operator=( const ORBIT_BASE& amdb_orbit )");
        return *this;
    }
    [[nodiscard]] std::unique_ptr<ORBIT_BASE> Clone() const override { return std::make_unique<MDB_ORBIT>(*this); }

    /// Opens and reads the file that the configuration names; the pool itself is not asked again.
    void ReadFromParameterPool(PARAMETER_POOL&) override {
        Open();
        Read();
    }

    /// Opens the data file and notes its state. @throws as OrbitDataFile and MDB_STATE_VECTORS::Open
    void Open() {
        const MDB_FILE file = OrbitDataFile(this->Configuration().mdb, this->Configuration().pool_file);
        this->SetRecordFiles({file.Path(), file.directory + "/" + MDB::kDefinitionName});
        file_.Open(file);
    }

    /// Reads the open file and creates the interpolation. A failure leaves the orbit as it was.
    /// @throws ERROR_DATA, after logging, when the file was changed since Open
    void Read() {
        this->TakeOver(file_.Read(this->Numbers().times));
        file_.Close();
    }

  private:
    MDB_STATE_VECTORS file_;
};
