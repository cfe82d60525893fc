#include "app/products/shift_maps.h"

#include <sys/mman.h>

#include "lib/baselib/logging/logging.h"

namespace {

MEM_MGR CreateMap(const std::string& path, const IMAGE_SIZE& size) {
    Log().Message(LOGGING_LEVEL::INFO, "    save: %s", path.c_str());
    MEM_MGR file;
    file.CreateFile(path, size.samples, size.lines, PIXEL_TYPE::FLT_6);
    return file;
}

/// @param x_step, y_step  master pixels per column and row where the map is relative, else 0
void Fill(MEM_MGR& file, const GRID_VIEW<const double>& positions, int x_step, int y_step) {
    const GRID_VIEW<float> map = ViewOf<float>(file);
    for (int row = 0; row < map.rows; ++row) {
        for (int column = 0; column < map.columns; ++column) {
            const double master = static_cast<double>(column) * x_step + static_cast<double>(row) * y_step;
            map[row][column] = static_cast<float>(positions[row][column] - master);
        }
    }
    file.Flush(MS_SYNC);
    file.Free();
}

}  // namespace

void SaveShiftMaps(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    const int relative = configuration.relative_shifts ? 1 : 0;
    MEM_MGR range = CreateMap(configuration.range_shift_file, state.shift_output);
    MEM_MGR azimuth = CreateMap(configuration.azimuth_shift_file, state.shift_output);
    Fill(range, state.scene.shifts.range, relative * configuration.shift.x, 0);
    Fill(azimuth, state.scene.shifts.azimuth, 0, relative * configuration.shift.y);
}
