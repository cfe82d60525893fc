#include "app/scene/radar_pair.h"

#include <limits>

#include "app/acquisition/orbit_coverage.h"
#include "app/keys/pool_key.h"
#include "app/say.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/azimuth_shift_correction.h"
#include "simulation/common_time_axis.h"

namespace {

int Extended(const VALUE_SOURCE& source, int size, int extension) {
    const long long extended = static_cast<long long>(size) + extension;
    if (extended > std::numeric_limits<int>::max())
        RefuseValue(source, std::to_string(size),
                    "and an extension of " + std::to_string(extension) + " exceed a 32-bit integer");
    return static_cast<int>(extended);
}

/// Both scenes stop where an image of the master's simulated size ends, on purpose.
ACQUISITION_SCENE SceneOf(const ACQUISITION& acquisition, double range_time_shift_s, const IMAGE_SIZE& simulated) {
    ACQUISITION_SCENE scene;
    scene.orbit = {&acquisition.orbit, 0.0};
    scene.prf_hz = acquisition.AdaptedPrf_hz();
    scene.rsf_hz = acquisition.AdaptedRsf_hz();
    scene.azimuth_sampling_interval_s = 1.0 / scene.prf_hz;
    scene.range_sampling_interval_s = 1.0 / scene.rsf_hz;
    scene.first_azimuth_time_s = acquisition.start.azimuth_time_s;
    scene.last_azimuth_time_s = (simulated.lines - 1) / scene.prf_hz + scene.first_azimuth_time_s;
    scene.near_range_time_s = acquisition.start.range_time_s + range_time_shift_s;
    scene.far_range_time_s = (simulated.samples - 1) / scene.rsf_hz + scene.near_range_time_s;
    scene.carrier_frequency_hz = acquisition.carrier_frequency_hz;
    scene.azimuth_bandwidth_hz = acquisition.azimuth_bandwidth_hz;
    return scene;
}

void LogStopTimes(const ACQUISITION_SCENE& scene, int number) {
    Log().Message(LOGGING_LEVEL::PARAMETER, "scene=%d  rg_stop_time=%f  az_stop_time=%f ", number,
                  scene.far_range_time_s, scene.last_azimuth_time_s + scene.orbit.orbit->SecondsFromReferenceToZero());
}

void CheckOrbits(const RADAR_PAIR& pair, const REQUEST& request) {
    const bool own = request.permanent_scatterer;
    const INPUT_FILES& pools = request.pools;
    const char* own_key = POOL_KEY<double>("first_az_time").row.name;
    const VALUE_SOURCE master{own ? pools.master_pool.text : pools.insar_pool.text,
                              own ? own_key : POOL_KEY<double>("master_first_az_time").row.name};
    const VALUE_SOURCE slave{own ? pools.slave_pool.text : pools.insar_pool.text,
                             own ? own_key : POOL_KEY<double>("slave_first_az_time").row.name};
    CheckOrbitCoverage(pair.master, pools.master_pool.text, master);
    CheckOrbitCoverage(pair.slave, pools.slave_pool.text, slave);
}

}  // namespace

IMAGE_SIZE SimulatedSize(const REQUEST& request, const ACQUISITIONS& acquisitions) {
    if (!request.extension.extended) return acquisitions.image;
    const INPUT_FILES& pools = request.pools;
    const std::string& pool = request.permanent_scatterer ? pools.master_pool.text : pools.insar_pool.text;
    const IMAGE_SIZE simulated{
        Extended({pool, POOL_KEY<int>("n_samples").row.name}, acquisitions.image.samples, request.extension.x),
        Extended({pool, POOL_KEY<int>("n_lines").row.name}, acquisitions.image.lines, request.extension.y)};
    Say(" - Set simulation area");
    Say("   nr_samples_simulation:..... %d", simulated.samples);
    Say("   nr_lines_simulation:....... %d", simulated.lines);
    return simulated;
}

RADAR_PAIR CorrectedPair(const REQUEST& request, const ACQUISITIONS& acquisitions, const IMAGE_SIZE& simulated) {
    const SOURCED_TEXT& shift = request.terrain.range_time_shift;
    const double shift_s = RequiredReal(shift.source, shift.text);
    Say(" - Applying correction for rg time (val = %f [s])", shift_s);
    Log().Message(LOGGING_LEVEL::DEBUG, "calculate scenes stop time");
    const RADAR_PAIR pair{SceneOf(acquisitions.master, shift_s, simulated),
                          SceneOf(acquisitions.slave, shift_s, simulated)};
    LogStopTimes(pair.master, 0);
    LogStopTimes(pair.slave, 1);
    CheckOrbits(pair, request);
    return pair;
}

RADAR_PAIR OnCommonAxis(RADAR_PAIR pair, const ACQUISITIONS& acquisitions) {
    if (!acquisitions.mode.IsSinglePass()) return pair;
    CheckAzimuthShiftCorrection(acquisitions.correction, pair.slave);
    CarrySlaveOntoMasterAxis(pair.master, pair.slave);
    return pair;
}
