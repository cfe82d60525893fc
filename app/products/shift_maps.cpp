#include "app/products/shift_maps.h"

#include <sys/mman.h>

#include "app/say.h"
#include "lib/baselib/image/mem_mgr.h"

namespace {

MEM_MGR CreateMap(const std::string& path, const IMAGE_SIZE& size) {
    Say("    save: %s", path.c_str());
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

void SaveShiftMaps(const REQUEST& request, const IMAGE_SIZE& size, const SHIFT_GRIDS& shifts) {
    const int relative = request.shifts.relative ? 1 : 0;
    MEM_MGR range = CreateMap(request.shifts.range_file.text, size);
    MEM_MGR azimuth = CreateMap(request.shifts.azimuth_file.text, size);
    Fill(range, shifts.range, relative * shifts.range_factor, 0);
    Fill(azimuth, shifts.azimuth, 0, relative * shifts.azimuth_factor);
}
