/// \file orbit_configuration.h
/// What an acquisition's parameter pool says about its orbit.

#pragma once

#include <string>

class PARAMETER_POOL;

/// Where an orbit lies in the record databases; each id chooses one directory of the path.
struct MDB_LOCATION {
    std::string data_file;  ///< full path; when given, nothing else counts
    std::string root_path;
    int mission_id = 0;
    int major_data_take_id = 0;
    int minor_data_take_id = 0;
    int tape_id_number = 0;
    int tape_source_id = 0;
    int orbit_source_id = 0;
    int channel_id = 0;
};

struct ORBIT_CONFIGURATION {
    std::string pool_file;  ///< for messages
    std::string representation;
    std::string interpolation;
    std::string reference_time;
    std::string param_key;     ///< key of the list of times; pool orbits only, as the next two
    std::string value_key;     ///< key of the list of positions
    std::string velocity_key;  ///< key of the list of velocities
    MDB_LOCATION mdb;          ///< record database orbits only
};

/// Reads what the orbit's type needs and no more: the keys of lists for pool orbits, of the record database for the
/// others.
/// @throws ERROR_PARAMETER_POOL for a key that is missing or of another type, ERROR_ARGUMENT for an unknown type
[[nodiscard]] ORBIT_CONFIGURATION ReadOrbitConfiguration(PARAMETER_POOL& pool);
