#include "app/products/slabs.h"

#include <algorithm>
#include <cmath>

#include "app/products/memory.h"
#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "simulation/thread_count.h"

namespace {

constexpr double kBytesPerMebibyte = 1048576.0;
constexpr double kBytesBesideGrids = 32.0 * kBytesPerMebibyte;

/// Mask and, per thread, one bit for each pixel; the grids that are wanted.
double BytesPerLine(const REQUEST& request, const OUTPUT_SIZES& sizes) {
    const double samples = sizes.simulated.samples;
    const SUBSAMPLING& shift = request.factors.shift;
    const SUBSAMPLING& earth = request.factors.earth;
    double bytes = samples * (1.0 + ThreadCount() / 8.0);
    if (request.WantsPhase()) bytes += 4.0 * samples;
    if (request.WantsShifts()) bytes += 2.0 * 8.0 * (samples / shift.x + 1.0) / shift.y;
    if (request.WantsEarth()) bytes += 3.0 * 8.0 * sizes.earth.samples / earth.y;
    if (request.WantsHeight()) bytes += 4.0 * sizes.earth.samples / earth.y;
    return bytes;
}

/// The system hands out more memory than it has and ends the process when it is touched, without a word of ours.
void RequireMemory(const IMAGE_SIZE& area, const SLAB_PLAN& plan, double bytes_per_line) {
    const double required = plan.lines * bytes_per_line + kBytesBesideGrids;
    const double available = AvailableBytes();
    if (required <= available) return;
    constexpr double kBytesPerGibibyte = 1024.0 * kBytesPerMebibyte;
    const double fitting = std::max((available - kBytesBesideGrids) / kBytesPerMebibyte, 0.0);
    LogAndThrow<ERROR_NO_MEMORY>(
        "the grids of %d samples x %d lines need %.1f GiB of memory, %.1f GiB are available: MEMORY_LIMIT (MiB) below "
        "%.0f "
        "has them simulated in smaller slabs",
        area.samples, area.lines, required / kBytesPerGibibyte, available / kBytesPerGibibyte, fitting);
}

/// The rows that belong to the lines.
template <class T>
void Move(GRID_VIEW<T>& grid, int factor, int first_line, int end_line) {
    if (!grid) return;
    grid.first_row = (first_line + factor - 1) / factor;
    grid.rows = (end_line - 1) / factor + 1 - grid.first_row;
}

}  // namespace

SLAB_PLAN PlanSlabs(const REQUEST& request, const OUTPUT_SIZES& sizes) {
    const double bytes_per_line = BytesPerLine(request, sizes);
    const double limit =
        request.memory_limit_mib ? *request.memory_limit_mib * kBytesPerMebibyte : 0.75 * MachineBytes();
    const int all_lines = sizes.simulated.lines;
    SLAB_PLAN plan{all_lines, 1};
    if (bytes_per_line * all_lines > limit) {
        const double fitting = std::floor(limit / bytes_per_line);
        if (fitting < 1.0)
            LogAndThrow<ERROR_NO_MEMORY>("MEMORY_LIMIT: one line of the grids needs %.0f MiB",
                                         std::ceil(bytes_per_line / kBytesPerMebibyte));
        plan.count = static_cast<int>(std::ceil(all_lines / fitting));
        plan.lines = (all_lines + plan.count - 1) / plan.count;
        plan.count = (all_lines + plan.lines - 1) / plan.lines;
    }
    RequireMemory(sizes.simulated, plan, bytes_per_line);
    if (!plan.IsWholeImage())
        Say(" - The image is simulated in %d slabs of %d lines: its grids exceed %.0f MiB", plan.count, plan.lines,
            limit / kBytesPerMebibyte);
    return plan;
}

int RowsInMemory(const SLAB_PLAN& plan, int factor, int rows_of_grid) {
    return plan.IsWholeImage() ? rows_of_grid : (plan.lines - 1) / factor + 1;
}

SCENE SceneOfLines(const SCENE& first_slab, const DEM_LINES& dem_lines, int first_line, int end_line) {
    SCENE scene = first_slab;
    Move(scene.image.mask, 1, first_line, end_line);
    Move(scene.image.phase_rad, 1, first_line, end_line);
    for (GRID_VIEW<double>* grid : {&scene.shifts.range, &scene.shifts.azimuth})
        Move(*grid, scene.shifts.azimuth_factor, first_line, end_line);
    for (GRID_VIEW<double>* grid : {&scene.earth.x, &scene.earth.y, &scene.earth.z})
        Move(*grid, scene.earth.azimuth_factor, first_line, end_line);
    Move(scene.earth.radar_dem, scene.earth.azimuth_factor, first_line, end_line);
    dem_lines.LimitTo(first_line, end_line, scene);
    return scene;
}
