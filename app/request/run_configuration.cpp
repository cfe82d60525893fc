#include "app/request/run_configuration.h"

#include "app/keys/refusal.h"
#include "app/request/area_extension.h"
#include "app/request/configuration_summary.h"
#include "app/request/subsampling_factors.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/logging/logging.h"

namespace {

void ReadPhaseKeys(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller) {
    if (controller.get_optional_parameter("SIMU_PHASE", configuration.phase_file))
        controller.get_optional_parameter("IFGRM_INVALID", configuration.invalid_phase);
}

void ReadPoolPaths(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller) {
    configuration.master_pool = controller.get_parameter("MASTER_POOL");
    configuration.slave_pool = controller.get_parameter("SLAVE_POOL");
    configuration.insar_pool = controller.get_parameter("INSAR_POOL");
    configuration.log_pool = controller.get_parameter("log_pp");
}

void ReadDemKeys(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller) {
    configuration.dem_pool = controller.get_parameter("DEM_POOL");
    configuration.dem_file = controller.get_parameter("DEM");
    controller.get_optional_parameter("DEM_VALID", configuration.dem_valid);
    configuration.range_time_shift = controller.get_parameter("RANGE_TIME_SHIFT");
}

void ReadObservationMode(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller,
                         PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    if (controller.parameter_exists("OBSERVATION_MODE")) {
        Log().Message(LOGGING_LEVEL::WARNING,
                      " - Observation mode forced by PCF -> Read value from PCF, not from pool ");
        configuration.observation_mode = controller.get_parameter("OBSERVATION_MODE");
        insar_pool.Change("observation_mode", STRING(configuration.observation_mode));
    } else {
        configuration.observation_mode = insar_pool.Get<STRING>("observation_mode").ToStd();
    }
}

void ReadParameterMode(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller) {
    configuration.permanent_scatterer = controller.parameter_exists("PS_INSAR_MODE");
    Log().Message(LOGGING_LEVEL::INFO, configuration.permanent_scatterer ? " - Parameter mode: permanent scatterer"
                                                                         : " - Parameter mode: std. InSAR");
}

void ReadShiftKeys(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller) {
    if (controller.parameter_exists("RG_COREG") || controller.parameter_exists("AZ_COREG")) {
        configuration.range_shift_file = controller.get_parameter("RG_COREG");
        configuration.azimuth_shift_file = controller.get_parameter("AZ_COREG");
    }
    configuration.relative_shifts = controller.parameter_exists("WRITE_SHIFTS");
    Log().Message(LOGGING_LEVEL::INFO, configuration.relative_shifts
                                           ? " - Mapping matrices represent relative shifts"
                                           : " - Mapping matrices represent absolute positions");
}

void ReadEarthKeys(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller) {
    if (controller.parameter_exists("X_EARTH") || controller.parameter_exists("Y_EARTH") ||
        controller.parameter_exists("Z_EARTH")) {
        configuration.x_earth_file = controller.get_parameter("X_EARTH");
        configuration.y_earth_file = controller.get_parameter("Y_EARTH");
        configuration.z_earth_file = controller.get_parameter("Z_EARTH");
    }
    controller.get_optional_parameter("H_EARTH", configuration.height_file);
}

void OpenPools(const RUN_CONFIGURATION& configuration, PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool,
               PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool, LOG_POOL& log_pool) {
    log_pool.pool = &insar_pool;
    if (configuration.log_pool != configuration.insar_pool) {
        log_pool.own = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(configuration.log_pool);
        log_pool.pool = log_pool.own.get();
    }
    master_pool.Open(configuration.master_pool);
    slave_pool.Open(configuration.slave_pool);
    insar_pool.Open(configuration.insar_pool);
}

}  // namespace

void ReadConfiguration(SIMULATION_STATE& state, CONTROLLER_IFC& controller, PARAMETER_POOL& master_pool,
                       PARAMETER_POOL& slave_pool, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool, LOG_POOL& log_pool) {
    RUN_CONFIGURATION& configuration = state.configuration;
    Log().Message(LOGGING_LEVEL::TRACE, "reading configuration ..");
    configuration.configuration_file = controller.get_configuration_file_name();
    ReadPhaseKeys(configuration, controller);
    ReadPoolPaths(configuration, controller);
    OpenPools(configuration, master_pool, slave_pool, insar_pool, log_pool);
    ReadDemKeys(configuration, controller);
    ReadObservationMode(configuration, controller, insar_pool);
    configuration.looks_range = controller.get_parameter("LOOKS_RG");
    configuration.looks_azimuth = controller.get_parameter("LOOKS_AZ");
    ReadParameterMode(configuration, controller);
    ReadShiftKeys(configuration, controller);
    ReadShiftSubsampling(configuration, controller, insar_pool);
    ReadEarthKeys(configuration, controller);
    ReadEarthSubsampling(configuration, controller, insar_pool);
    ReadGeocodingSubsampling(configuration, insar_pool);
    ComputeAreaExtension(configuration);
    LogConfigurationSummary(configuration);
    controller.WarnAboutMistypedKeys();
}
