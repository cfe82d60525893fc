/// \file mdb_state_vectors.h
/// Reading state vectors from a record database. Items: the key item is the time; "x" "y" "z" in metres, "vx" "vy" "vz"
/// in metres per second.

#pragma once

#include "lib/baselib/mdb/mdb.h"
#include "orbit/mdb_orbit_path.h"
#include "orbit/state_vectors.h"

/// Opens the file read-only. @throws const char* of MDB::Open, after a line that names the file
void OpenOrbitFile(MDB& mdb, const MDB_FILE& file);

/// All records of the open file.
/// @throws ERROR_DATA, after logging, when the file was changed since it was opened; const char* of MDB, and "can not
/// cast from UTC to double" or "... MET ..." for a time item that is no plain number, after a line that names the file
template <class S>
STATE_VECTORS<double, S> ReadOrbitFile(MDB& mdb);

/// The names of the open file and its items, for messages.
[[nodiscard]] STATE_VECTOR_SOURCE MdbSource(const MDB& mdb);

extern template STATE_VECTORS<double, double> ReadOrbitFile<double>(MDB&);
extern template STATE_VECTORS<double, UNIVERSAL_TIME> ReadOrbitFile<UNIVERSAL_TIME>(MDB&);
extern template STATE_VECTORS<double, MISSION_ELAPSED_TIME> ReadOrbitFile<MISSION_ELAPSED_TIME>(MDB&);
