#include "app/products/earth_files.h"

#include "lib/baselib/logging/logging.h"
#include "simulation/perturbation_file.h"

namespace {

constexpr double kRequiredPrecision_m = 0.1;

void SaveOne(SIMULATION_STATE& state, const std::string& path, const GRID_VIEW<const double>& matrix,
             const char* offset_key) {
    Log().Message(LOGGING_LEVEL::INFO, "       save: %s", path.c_str());
    const double offset_m = PerturbationOffset(matrix);
    WritePerturbationFile(path, matrix, offset_m, kRequiredPrecision_m);
    state.insar_pool->Change(offset_key, offset_m);
}

}  // namespace

void SaveEarthFiles(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    Log().Message(LOGGING_LEVEL::INFO, "    center_x : %d", state.earth_output.samples / 2);
    Log().Message(LOGGING_LEVEL::INFO, "    center_y : %d", state.earth_output.lines / 2);
    Log().Message(LOGGING_LEVEL::INFO, "    a. x Earth file ");
    SaveOne(state, configuration.x_earth_file, state.scene.earth.x, "x_earth_offset");
    Log().Message(LOGGING_LEVEL::INFO, "    b. y Earth file ");
    SaveOne(state, configuration.y_earth_file, state.scene.earth.y, "y_earth_offset");
    Log().Message(LOGGING_LEVEL::INFO, "    c. z Earth file ");
    SaveOne(state, configuration.z_earth_file, state.scene.earth.z, "z_earth_offset");
}
