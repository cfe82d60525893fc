/// \file mdb_orbit.h
/// An orbit whose state vectors stand in a record database.

#pragma once

#include "orbit/mdb_state_vectors.h"
#include "orbit/orbit.h"

template <class T, class S, class I, class P>
class MDB_ORBIT final : public ORBIT<T, S, I, P> {
  public:
    MDB_ORBIT() = default;
    /// Copies the orbit, not the open file.
    MDB_ORBIT(const MDB_ORBIT& other) : ORBIT<T, S, I, P>(other) {}

    MDB_ORBIT& operator=(const MDB_ORBIT& other) {
        this->CopyFrom(other);
        return *this;
    }

    MDB_ORBIT& operator=(const ORBIT_BASE& amdb_orbit) override {
        const auto* const same_type = dynamic_cast<const MDB_ORBIT*>(&amdb_orbit);
        if (same_type == nullptr) {
            RefuseAssignment("virtual MDB_ORBIT<T,S,I,P>& operator=( const ORBIT_BASE& amdb_orbit )");
        }
        return *this = *same_type;
    }

    [[nodiscard]] std::unique_ptr<ORBIT_BASE> Clone() const override { return std::make_unique<MDB_ORBIT>(*this); }

    /// Opens and reads the file that the configuration names; the pool itself is not asked again.
    void ReadFromParameterPool(PARAMETER_POOL&) override {
        Open();
        Read();
    }

    /// Opens the data file and notes its state. @throws as OrbitDataFile and OpenOrbitFile
    void Open() { OpenOrbitFile(mdb_, OrbitDataFile(this->Configuration().mdb, this->Configuration().pool_file)); }

    /// Reads the open file and creates the interpolation. A failure leaves the orbit as it was.
    /// @throws ERROR_DATA, after logging, when the file was changed since Open
    void Read() {
        const STATE_VECTORS<T, S> vectors = ReadOrbitFile<S>(mdb_);
        this->TakeOver(vectors, MdbSource(mdb_));
        mdb_.Close();
    }

  private:
    MDB mdb_;
};
