#include "app/keys/configuration_keys.h"

std::span<const CONFIGURATION_KEY> ConfigurationKeys() {
    using enum KEY_NEED;
    static constexpr CONFIGURATION_KEY kKeys[] = {
        {"MASTER_POOL", MANDATORY, "path", "", "parameter pool of the master acquisition"},
        {"SLAVE_POOL", MANDATORY, "path", "", "parameter pool of the slave acquisition"},
        {"INSAR_POOL", MANDATORY, "path", "", "parameter pool of the pair; results are written into it"},
        {"log_pp", MANDATORY, "path", "", "pool that receives the software history; may be the InSAR pool"},
        {"DEM_POOL", MANDATORY, "path", "", "parameter pool of the elevation model"},
        {"DEM", MANDATORY, "path", "", "elevation model, a Sun raster of 16-bit heights in metres"},
        {"RANGE_TIME_SHIFT", MANDATORY, "real, s", "", "added to the first range time of master and slave"},
        {"LOOKS_RG", MANDATORY, "integer", "", "looks in range, for the log"},
        {"LOOKS_AZ", MANDATORY, "integer", "", "looks in azimuth, for the log"},
        {"SIMU_PHASE", OPTIONAL, "path", "not written", "simulated phase"},
        {"IFGRM_INVALID", OPTIONAL, "real", "0", "phase of points that nothing reaches; read with SIMU_PHASE only"},
        {"DEM_VALID", OPTIONAL, "min..max, m", "all heights",
         "range of valid heights; others are counted and reported"},
        {"PS_INSAR_MODE", OPTIONAL, "any", "standard mode", "its presence selects the permanent-scatterer mode"},
        {"RG_COREG", OPTIONAL, "path", "not written", "range position in the slave image; needs AZ_COREG"},
        {"AZ_COREG", OPTIONAL, "path", "not written", "azimuth position in the slave image; needs RG_COREG"},
        {"WRITE_SHIFTS", OPTIONAL, "any", "positions", "its presence makes these two files relative shifts"},
        {"X_EARTH", OPTIONAL, "path", "not written", "Earth-fixed x of each pixel; needs Y_EARTH and Z_EARTH"},
        {"Y_EARTH", OPTIONAL, "path", "not written", "Earth-fixed y of each pixel"},
        {"Z_EARTH", OPTIONAL, "path", "not written", "Earth-fixed z of each pixel"},
        {"H_EARTH", OPTIONAL, "path", "not written", "elevation in radar geometry"},
        {"OBSERVATION_MODE", FORCES_POOL, "text", "pool", "observation mode, such as dual_pass"},
        {"SHIFT_MATRICES_SUBSAMPLING", FORCES_POOL, "integer", "pool", "sub-sampling of the shift files, both ways"},
        {"SHIFT_MATRICES_SUBSAMPLING_RG", FORCES_POOL, "integer", "pool",
         "the same in range; needs the one in azimuth"},
        {"SHIFT_MATRICES_SUBSAMPLING_AZ", FORCES_POOL, "integer", "pool", "the same in azimuth"},
        {"EARTH_MATRICES_SUBSAMPLING_X", FORCES_POOL, "integer", "pool", "sub-sampling of the Earth files in range"},
        {"EARTH_MATRICES_SUBSAMPLING_Y", FORCES_POOL, "integer", "pool", "sub-sampling of the Earth files in azimuth"},
        {"pid", CONTROLLER, "text", "program file", "name that forms the names of the files below"},
        {"status", CONTROLLER, "path", "working folder", "folder of the status files OK. ERROR. STOP."},
        {"pcf", CONTROLLER, "path", "pcf.velmora", "control file: lines of key and value"},
        {"lfn", CONTROLLER, "path", "log.velmora", "log file, appended to"},
        {"lfl", CONTROLLER, "level", "DEBUG", "lowest level in the log file"},
        {"lsl", CONTROLLER, "level", "DEBUG", "lowest level on the screen"},
    };
    return kKeys;
}

std::vector<std::string> ConfigurationKeyNames() {
    std::vector<std::string> names;
    for (const CONFIGURATION_KEY& key : ConfigurationKeys()) names.emplace_back(key.name);
    return names;
}
