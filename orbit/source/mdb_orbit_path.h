/// \file mdb_orbit_path.h
/// Where an orbit's data file lies in the record databases:
///
///     root / mission / dt_<major>_<minor> / hddc_<tape id>_<tape source> / <orbit source>_<channel>
///     /data/orbits/mission_1/dt_17_3/hddc_42_pri/rest_1
///
/// Numbers stand without leading blanks or zeros. The texts of missions and orbit products are data of a deployment:
/// the tables in mdb_orbit_path.cpp are the one place to change them.

#pragma once

#include <string>

#include "orbit/source/orbit_configuration.h"

/// One row of an id table; a table is closed by a row without text.
struct ID_TEXT {
    int id;
    const char* text;
};

[[nodiscard]] const ID_TEXT* MissionIds();      ///< 0 to 4
[[nodiscard]] const ID_TEXT* OrbitSourceIds();  ///< 0 to 6; 0 is the empty text
[[nodiscard]] const ID_TEXT* TapeSourceIds();   ///< 0 to 2

/// The text of an id. @throws ERROR_DATA, after a line that names key and value, when the table has no such id or its
/// text could lead out of the database ("/" or "..")
[[nodiscard]] std::string TextOfId(const ID_TEXT* table, int id, const std::string& pool_file, const char* key);

struct MDB_FILE {
    std::string directory;
    std::string file_name;

    [[nodiscard]] std::string Path() const { return directory + "/" + file_name; }
};

/// @throws ERROR_DATA, after a line that names key and value, for an id that has no text or is negative
[[nodiscard]] MDB_FILE OrbitDataFile(const MDB_LOCATION& location, const std::string& pool_file);
