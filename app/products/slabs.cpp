#include "app/products/slabs.h"

#include <algorithm>
#include <cmath>

#include "app/products/memory.h"
#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "simulation/scene_lines.h"
#include "simulation/thread_count.h"

namespace {

constexpr double kBytesPerMebibyte = 1048576.0;
constexpr double kBytesOfProgram = 32.0 * kBytesPerMebibyte;

/// Mask and, per thread, one bit for each pixel; the grids that are wanted.
double BytesPerLine(const REQUEST& request, const OUTPUT_SIZES& sizes) {
    const double samples = sizes.simulated.samples;
    const SUBSAMPLING& shift = request.factors.shift;
    const SUBSAMPLING& earth = request.factors.earth;
    double bytes = samples * (1.0 + ThreadCount() / 8.0);
    if (request.WantsPhase()) bytes += 4.0 * samples;
    if (request.WantsShifts()) bytes += 2.0 * 8.0 * (samples / shift.x + 1.0) / shift.y;
    if (request.WantsEarth()) bytes += 3.0 * 8.0 * sizes.earth.samples / earth.y;
    if (request.NeedsHeights()) bytes += 4.0 * sizes.earth.samples / earth.y;
    if (request.NeedsNormals()) bytes += 12.0 * sizes.earth.samples / earth.y;
    return bytes;
}

/// The system hands out more memory than it has and ends the process when it is touched, without a word of ours.
void RequireMemory(const IMAGE_SIZE& area, const SLAB_PLAN& plan, double bytes_per_line, double bytes_beside) {
    const double required = plan.lines * bytes_per_line + bytes_beside;
    const double available = AvailableBytes();
    if (required <= available) return;
    constexpr double kBytesPerGibibyte = 1024.0 * kBytesPerMebibyte;
    const double fitting = std::max((available - bytes_beside) / kBytesPerMebibyte, 0.0);
    LogAndThrow<ERROR_NO_MEMORY>(
        "the grids of %d samples x %d lines need %.1f GiB of memory, %.1f GiB are available: MEMORY_LIMIT (MiB) below "
        "%.0f "
        "has them simulated in smaller slabs",
        area.samples, area.lines, required / kBytesPerGibibyte, available / kBytesPerGibibyte, fitting);
}

/// Slabs of about equal height but for the last, of a quarter: one thread writes it, and then waits for the disk.
/// @param lines  at most, 1 or more
SLAB_PLAN CutInto(int all_lines, double lines) {
    constexpr double kSavedAtLast = 0.75;
    SLAB_PLAN plan{all_lines, 1};
    if (lines >= all_lines) return plan;
    plan.count = static_cast<int>(std::ceil(all_lines / lines + kSavedAtLast));
    plan.lines = static_cast<int>(std::ceil(all_lines / (plan.count - kSavedAtLast)));
    plan.count = (all_lines + plan.lines - 1) / plan.lines;
    return plan;
}

/// Slabs whose pages are few and used again, instead of fresh ones from the system for a whole image. Cells at the
/// border of two slabs are walked twice: slabs of fewer lines would cost more than they save.
double LinesForSpeed(double bytes_per_line) {
    constexpr double kBytesOfSlab = 64.0 * kBytesPerMebibyte;
    constexpr double kFewestLines = 512.0;
    return std::max(std::floor(kBytesOfSlab / bytes_per_line), kFewestLines);
}

SLAB_PLAN CutByLimit(int all_lines, double bytes_per_line, double limit) {
    const double fitting = std::floor(limit / bytes_per_line);
    if (fitting < 1.0)
        LogAndThrow<ERROR_NO_MEMORY>("MEMORY_LIMIT: one line of the grids needs %.0f MiB",
                                     std::ceil(bytes_per_line / kBytesPerMebibyte));
    if (fitting >= all_lines) return {all_lines, 1};
    SLAB_PLAN plan = CutInto(all_lines, std::min(fitting, LinesForSpeed(bytes_per_line)));
    plan.exceeds_limit = true;
    return plan;
}

}  // namespace

SLAB_PLAN PlanSlabs(const REQUEST& request, const OUTPUT_SIZES& sizes, double bytes_beside, bool early) {
    const double bytes_per_line = BytesPerLine(request, sizes);
    const double limit =
        request.memory_limit_mib ? *request.memory_limit_mib * kBytesPerMebibyte : 0.75 * MachineBytes();
    const int all_lines = sizes.simulated.lines;
    SLAB_PLAN plan = CutByLimit(all_lines, bytes_per_line, limit);
    if (plan.IsWholeImage() && early) plan = CutInto(all_lines, LinesForSpeed(bytes_per_line));
    RequireMemory(sizes.simulated, plan, bytes_per_line, bytes_beside + kBytesOfProgram);
    if (plan.exceeds_limit)
        Say(" - The image is simulated in %d slabs of %d lines: its grids exceed %.0f MiB", plan.count, plan.lines,
            limit / kBytesPerMebibyte);
    return plan;
}

int RowsInMemory(const SLAB_PLAN& plan, int factor, int rows_of_grid) {
    return plan.IsWholeImage() ? rows_of_grid : (plan.lines - 1) / factor + 1;
}

SCENE SceneOfLines(const SCENE& first_slab, const DEM_REACH& dem_reach, int first_line, int end_line) {
    SCENE scene = MovedToLines(first_slab, first_line, end_line);
    dem_reach.LimitTo(first_line, end_line, scene.image.mask.columns, scene);
    return scene;
}
