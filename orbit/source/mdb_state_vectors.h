/// \file mdb_state_vectors.h
/// Reading state vectors from a record database. Items: the key item is the time; "x" "y" "z" in metres, "vx" "vy" "vz"
/// in metres per second.

#pragma once

#include "lib/baselib/mdb/mdb.h"
#include "orbit/source/mdb_orbit_path.h"
#include "orbit/source/state_vector_lists.h"

class MDB_STATE_VECTORS {
  public:
    MDB_STATE_VECTORS();
    ~MDB_STATE_VECTORS();

    /// Opens the file read-only and notes its state. @throws const char* of MDB::Open, after a line that names the file
    void Open(const MDB_FILE& file);

    /// All records of the open file, which stays open for another try when this fails.
    /// @throws ERROR_DATA, after logging, when the file was changed since it was opened; const char* of MDB, and "can
    /// not cast from UTC to double" or "... MET ..." for a time item that is no plain number, after a line that names
    /// the file
    [[nodiscard]] STATE_VECTOR_LISTS Read(TIME_KIND times);
    void Close() { mdb_.Close(); }

  private:
    MDB mdb_;
};
