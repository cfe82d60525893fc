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
    shifts.rows = static_cast<int>(state.range_shift.Rows());
    shifts.columns = static_cast<int>(state.range_shift.Columns());
    shifts.range = state.range_shift.GetNumRecMatrix<double>();
    shifts.azimuth = state.azimuth_shift.GetNumRecMatrix<double>();
}

void SetUpEarthGrids(SIMULATION_STATE& state) {
    EARTH_GRIDS& earth = state.scene.earth;
    earth = {};
    earth.azimuth_factor = state.configuration.earth.y;
    earth.range_factor = state.configuration.earth.x;
    earth.rows = state.earth_output.lines;
    earth.columns = state.earth_output.samples;
    if (state.configuration.WantsEarth()) {
        earth.x = state.x_earth.GetNumRecMatrix<double>();
        earth.y = state.y_earth.GetNumRecMatrix<double>();
        earth.z = state.z_earth.GetNumRecMatrix<double>();
    }
    if (state.configuration.WantsHeight()) earth.radar_dem = state.height.GetNumRecMatrix<float>();
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
    scene.image.rows = state.simulation.lines;
    scene.image.columns = state.simulation.samples;
    scene.image.mask = state.mask.GetNumRecMatrix<unsigned char>();
    scene.image.phase_rad = state.configuration.WantsPhase() ? state.phase.GetNumRecMatrix<float>() : nullptr;
    SetUpShiftGrids(state);
    SetUpEarthGrids(state);
}
