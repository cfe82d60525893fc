#include "app/scene/scene_setup.h"

#include "simulation/azimuth_shift_correction.h"
#include "simulation/common_time_axis.h"

namespace {

ACQUISITION_SCENE SceneOf(const ACQUISITION& acquisition) {
    ACQUISITION_SCENE scene;
    scene.orbit = {&acquisition.orbit, 0.0};
    scene.first_azimuth_time_s = acquisition.first_azimuth_time_s;
    scene.last_azimuth_time_s = acquisition.azimuth_stop_time_s;
    scene.near_range_time_s = acquisition.first_range_time_s;
    scene.far_range_time_s = acquisition.range_stop_time_s;
    scene.prf_hz = acquisition.prf_hz;
    scene.azimuth_sampling_interval_s = 1.0 / acquisition.prf_hz;
    scene.rsf_hz = acquisition.range_sampling_frequency_hz;
    scene.range_sampling_interval_s = 1.0 / acquisition.range_sampling_frequency_hz;
    scene.carrier_frequency_hz = acquisition.radar_frequency_hz;
    scene.azimuth_bandwidth_hz = acquisition.azimuth_bandwidth_hz;
    return scene;
}

void SetUpShiftGrids(SIMULATION_STATE& state) {
    SHIFT_GRIDS& shifts = state.scene.shifts;
    shifts = {};
    if (!state.configuration.WantsShifts()) return;
    shifts.azimuth_factor = state.configuration.shift.y;
    shifts.range_factor = state.configuration.shift.x;
    shifts.range = ViewOf<double>(state.range_shift);
    shifts.azimuth = ViewOf<double>(state.azimuth_shift);
}

void SetUpEarthGrids(SIMULATION_STATE& state) {
    EARTH_GRIDS& earth = state.scene.earth;
    earth = {};
    earth.azimuth_factor = state.configuration.earth.y;
    earth.range_factor = state.configuration.earth.x;
    if (state.configuration.WantsEarth()) {
        earth.x = ViewOf<double>(state.x_earth);
        earth.y = ViewOf<double>(state.y_earth);
        earth.z = ViewOf<double>(state.z_earth);
    }
    if (state.configuration.WantsHeight()) earth.radar_dem = ViewOf<float>(state.height);
}

}  // namespace

void SetUpAcquisitions(SIMULATION_STATE& state) {
    SCENE& scene = state.scene;
    scene.master = SceneOf(state.master);
    scene.slave = SceneOf(state.slave);
    scene.bistatic = state.mode.IsSinglePass();
    const ARRAY<double>& coefficients = state.correction.coefficients;
    scene.correction.coefficients.assign(coefficients.begin(), coefficients.end());
    scene.correction.fast_time_reference_s = state.correction.fast_time_reference_s;
    if (!scene.bistatic) return;
    CheckAzimuthShiftCorrection(scene.correction, scene.slave);
    CarrySlaveOntoMasterAxis(scene.master, scene.slave);
}

void SetUpGrids(SIMULATION_STATE& state) {
    SCENE& scene = state.scene;
    scene.image.mask = ViewOf<unsigned char>(state.mask);
    scene.image.phase_rad = state.configuration.WantsPhase() ? ViewOf<float>(state.phase) : GRID_VIEW<float>();
    SetUpShiftGrids(state);
    SetUpEarthGrids(state);
}
