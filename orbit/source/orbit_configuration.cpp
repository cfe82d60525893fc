#include "orbit/source/orbit_configuration.h"

#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/orbit_ids.h"

namespace {

std::string GetText(PARAMETER_POOL& pool, const char* key) {
    return pool.Get<STRING>(key).ToStd();
}

int GetIdOr(PARAMETER_POOL& pool, const char* key, int default_id) {
    return pool.FindKey(key) ? pool.Get<int>(key) : default_id;
}

MDB_LOCATION ReadMdbLocation(PARAMETER_POOL& pool) {
    MDB_LOCATION location;
    if (pool.FindKey("mdb_orbit_data_file")) location.data_file = GetText(pool, "mdb_orbit_data_file");
    if (!location.data_file.empty()) return location;
    location.root_path = GetText(pool, "root_path");
    location.mission_id = pool.Get<int>("mission_id");
    location.tape_id_number = pool.Get<int>("tape_id_number");
    location.tape_source_id = pool.Get<int>("tape_source_id");
    location.major_data_take_id = pool.Get<int>("major_data_take_id");
    location.minor_data_take_id = pool.Get<int>("minor_data_take_id");
    location.channel_id = pool.Get<int>("channel_id");
    location.orbit_source_id = GetIdOr(pool, "orbit_source_id", 0);
    return location;
}

/// @throws ERROR_ARGUMENT after lines that name the entry
ORBIT_TYPE_ID TypeOf(const ORBIT_CONFIGURATION& configuration) {
    try {
        return OrbitTypeIdFromText(configuration.representation);
    } catch (const ERROR_ARGUMENT&) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"orbit_representation\": value \"%s\" is refused",
                      configuration.pool_file.c_str(), configuration.representation.c_str());
        throw;
    }
}

}  // namespace

ORBIT_CONFIGURATION ReadOrbitConfiguration(PARAMETER_POOL& pool) {
    ORBIT_CONFIGURATION configuration;
    configuration.pool_file = pool.FileName();
    configuration.representation = GetText(pool, "orbit_representation");
    configuration.interpolation = GetText(pool, "orbit_interpolation");
    if (IsMdbType(TypeOf(configuration))) {
        configuration.mdb = ReadMdbLocation(pool);
    } else {
        configuration.param_key = GetText(pool, "orbit_param_key");
        configuration.value_key = GetText(pool, "orbit_value_key");
        configuration.velocity_key = GetText(pool, "orbit_velocity_key");
    }
    configuration.reference_time = GetText(pool, "orbit_reference_time");
    return configuration;
}
