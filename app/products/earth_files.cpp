#include "app/products/earth_files.h"

#include "app/say.h"
#include "simulation/perturbation_file.h"

namespace {

constexpr double kRequiredPrecision_m = 0.1;

/// Writes one file and notes its offset in the InSAR pool.
void SaveOne(const SOURCED_TEXT& file, const GRID_VIEW<const double>& matrix, const char* offset_key,
             PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Say("       save: %s", file.Text());
    const double offset_m = PerturbationOffset(matrix);
    WritePerturbationFile(file.text, matrix, offset_m, kRequiredPrecision_m);
    insar_pool.Change(offset_key, offset_m);
}

}  // namespace

void SaveEarthFiles(const EARTH_REQUEST& files, const EARTH_GRIDS& grids,
                    PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Say("    center_x : %d", grids.x.columns / 2);
    Say("    center_y : %d", grids.x.rows / 2);
    Say("    a. x Earth file ");
    SaveOne(files.x_file, grids.x, "x_earth_offset", insar_pool);
    Say("    b. y Earth file ");
    SaveOne(files.y_file, grids.y, "y_earth_offset", insar_pool);
    Say("    c. z Earth file ");
    SaveOne(files.z_file, grids.z, "z_earth_offset", insar_pool);
}
