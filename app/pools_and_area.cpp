#include "app/pools_and_area.h"

#include <limits>
#include <string>

#include "app/acquisition/acquisition_parameters.h"
#include "app/acquisition/orbit_coverage.h"
#include "app/keys/refusal.h"
#include "app/products/result_images.h"
#include "app/request/product_paths.h"
#include "app/scene/output_sizes.h"
#include "app/scene/scene_setup.h"
#include "app/scene/simulation_area.h"
#include "app/terrain/dem_description.h"
#include "app/terrain/dem_valid_range.h"
#include "app/terrain/dem_void_report.h"
#include "lib/baselib/logging/logging.h"

namespace {

int Extended(const VALUE_SOURCE& source, int size, int extension) {
    const long long extended = static_cast<long long>(size) + extension;
    if (extended > std::numeric_limits<int>::max())
        RefuseValue(source, std::to_string(size),
                    "and an extension of " + std::to_string(extension) + " exceed a 32-bit integer");
    return static_cast<int>(extended);
}

void SetSimulationSize(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    state.simulation = state.image;
    if (!configuration.area_extended) return;
    const std::string& pool = configuration.permanent_scatterer ? configuration.master_pool : configuration.insar_pool;
    state.simulation.samples = Extended({pool, "n_samples"}, state.image.samples, configuration.extension_x);
    state.simulation.lines = Extended({pool, "n_lines"}, state.image.lines, configuration.extension_y);
    Log().Message(LOGGING_LEVEL::INFO, " - Set simulation area");
    Log().Message(LOGGING_LEVEL::INFO, "   nr_samples_simulation:..... %d", state.simulation.samples);
    Log().Message(LOGGING_LEVEL::INFO, "   nr_lines_simulation:....... %d", state.simulation.lines);
}

void ApplyRangeTimeShift(SIMULATION_STATE& state) {
    const double shift_s = RequiredReal({"configuration", "RANGE_TIME_SHIFT"}, state.configuration.range_time_shift);
    Log().Message(LOGGING_LEVEL::INFO, " - Applying correction for rg time (val = %f [s])", shift_s);
    state.master.first_range_time_s += shift_s;
    state.slave.first_range_time_s += shift_s;
}

/// Both scenes stop where an image of the master's simulated size ends, on purpose.
void SetStopTimes(SIMULATION_STATE& state) {
    Log().Message(LOGGING_LEVEL::DEBUG, "calculate scenes stop time");
    int scene = 0;
    for (ACQUISITION* acquisition : {&state.master, &state.slave}) {
        acquisition->azimuth_stop_time_s =
            (state.simulation.lines - 1) / acquisition->prf_hz + acquisition->first_azimuth_time_s;
        acquisition->range_stop_time_s =
            (state.simulation.samples - 1) / acquisition->range_sampling_frequency_hz + acquisition->first_range_time_s;
        Log().Message(LOGGING_LEVEL::PARAMETER, "scene=%d  rg_stop_time=%f  az_stop_time=%f ", scene++,
                      acquisition->range_stop_time_s, acquisition->azimuth_stop_time_s);
    }
}

void SetValidDemRange(SIMULATION_STATE& state) {
    const std::string& text = state.configuration.dem_valid;
    if (text.empty()) {
        Log().Message(LOGGING_LEVEL::INFO, " - No dem valid value string given ");
        return;
    }
    const DEM_VALID_RANGE range = ParseDemValidRange(text);
    state.valid_dem_minimum_m = range.minimum_m;
    state.valid_dem_maximum_m = range.maximum_m;
    Log().Message(LOGGING_LEVEL::INFO, " - Parsed valid dem value range: %f .. %f ",
                  static_cast<double>(range.minimum_m), static_cast<double>(range.maximum_m));
}

void SetInvalidPhase(SIMULATION_STATE& state) {
    const std::string& text = state.configuration.invalid_phase;
    if (text.empty()) return;
    state.invalid_phase = RequiredFloat({"configuration", "IFGRM_INVALID"}, text);
    Log().Message(LOGGING_LEVEL::INFO, " - Ifgrm invalid value: ...... %s", text.c_str());
}

void SizeOutputs(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    if (configuration.WantsShifts()) SizeShiftMatrices(state);
    if (configuration.WantsEarth() || configuration.WantsHeight()) SizeEarthMatrices(state);
}

}  // namespace

void ReadPoolsAndArea(SIMULATION_STATE& state, PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool,
                      PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    state.insar_pool = &insar_pool;
    ReadAcquisitionParameters(state, master_pool, slave_pool, insar_pool);
    SetSimulationSize(state);
    Log().Message(LOGGING_LEVEL::INFO, " - Read map pool: ............ %s", state.configuration.dem_pool.c_str());
    PARAMETER_POOL dem_pool(state.configuration.dem_pool);
    ApplyRangeTimeShift(state);
    SetStopTimes(state);
    CheckOrbitCoverage(state);
    ReadDemDescription(state, dem_pool);
    SetUpAcquisitions(state);
    LocateSimulationArea(state);
    SetValidDemRange(state);
    SetInvalidPhase(state);
    ReportDemVoids(state);
    SizeOutputs(state);
    CheckProductPaths(state);
    AllocateResultImages(state);
    SetUpGrids(state);
}
