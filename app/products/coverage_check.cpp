#include "app/products/coverage_check.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "app/scene/image_to_dem.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// The points without a mark and the box around them, in samples and lines; bounds are inclusive.
struct GAP {
    long long count = 0;
    int first_sample = 0;
    int last_sample = 0;
    int first_line = 0;
    int last_line = 0;
};

GAP FindGap(const MASTER_GRIDS& image) {
    GAP gap;
    for (int line = 0; line < image.mask.rows; ++line) {
        const unsigned char* row = image.mask[line];
        const auto columns = static_cast<std::size_t>(image.mask.columns);
        if (std::memchr(row, 0, columns) == nullptr) continue;
        for (int sample = 0; sample < image.mask.columns; ++sample) {
            if (row[sample] != 0) continue;
            if (gap.count++ == 0) {
                Log().Message(LOGGING_LEVEL::WARNING, "Error: point has not been simulated rg=%d, az=%d", sample, line);
                gap = {1, sample, sample, line, line};
            }
            gap.first_sample = std::min(gap.first_sample, sample);
            gap.last_sample = std::max(gap.last_sample, sample);
            gap.last_line = line;
        }
    }
    return gap;
}

/// Where a pixel may lie in the DEM: between the places of the lowest and of the highest terrain.
class PIXEL_IN_DEM {
  public:
    PIXEL_IN_DEM(const SIMULATION_STATE& state, double sample, double line)
        : state_(state), locate_(state.acquisitions, state.scene.dem) {
        const ACQUISITION_SCENE& master = state.scene.master;
        azimuth_s_ = master.first_azimuth_time_s + line / master.prf_hz;
        range_s_ = master.near_range_time_s + sample / master.rsf_hz;
        lowest_ = locate_(azimuth_s_, range_s_, state.survey.lowest_m).grid;
        highest_ = locate_(azimuth_s_, range_s_, state.survey.highest_m).grid;
    }

    bool LeavesDem() const { return !IsInDem(lowest_) || !IsInDem(highest_); }

    bool CrossesVoid() const {
        const DEM_GRID& dem = state_.scene.dem;
        constexpr int kNeighbours = 2;
        const auto clamped = [](double value, int size) {
            return static_cast<int>(std::clamp(value, 0.0, size - 1.0));
        };
        const int top = clamped(std::min(lowest_.y, highest_.y) - kNeighbours, dem.rows);
        const int bottom = clamped(std::max(lowest_.y, highest_.y) + kNeighbours, dem.rows);
        const int left = clamped(std::min(lowest_.x, highest_.x) - kNeighbours, dem.columns);
        const int right = clamped(std::max(lowest_.x, highest_.x) + kNeighbours, dem.columns);
        for (int row = top; row <= bottom; ++row) {
            const short* heights = dem.heights[row];
            if (std::any_of(heights + left, heights + right + 1,
                            [this](short height_m) { return state_.valid_heights.Excludes(height_m); }))
                return true;
        }
        return false;
    }

    bool HasLargeCells() const {
        constexpr double kSamples = 1000.0;
        const double farther_s = range_s_ + kSamples / state_.scene.master.rsf_hz;
        const POINT<double> here = locate_(azimuth_s_, range_s_, 0.0).grid;
        const POINT<double> beside = locate_(azimuth_s_, farther_s, 0.0).grid;
        return std::hypot(beside.x - here.x, beside.y - here.y) < 1.0;
    }

  private:
    bool IsInDem(const POINT<double>& point) const {
        return point.x >= 0.0 && point.y >= 0.0 && point.x <= state_.scene.dem.columns - 1.0 &&
               point.y <= state_.scene.dem.rows - 1.0;
    }

    const SIMULATION_STATE& state_;
    const IMAGE_TO_DEM locate_;
    double azimuth_s_;
    double range_s_;
    POINT<double> lowest_;
    POINT<double> highest_;
};

const char* Cause(const SIMULATION_STATE& state, const GAP& gap) {
    bool leaves = false;
    bool crosses_void = false;
    bool large_cells = false;
    for (const int sample : {gap.first_sample, gap.last_sample}) {
        for (const int line : {gap.first_line, gap.last_line}) {
            const PIXEL_IN_DEM pixel(state, sample, line);
            leaves = leaves || pixel.LeavesDem();
            crosses_void = crosses_void || pixel.CrossesVoid();
            large_cells = large_cells || pixel.HasLargeCells();
        }
    }
    if (large_cells) return "the DEM's cells are larger than 1000 samples";
    if (crosses_void) return "a void of the DEM lies there";
    if (leaves) return "the DEM ends there";
    return "the DEM covers the place; its terrain may be too steep for its cells";
}

}  // namespace

void CheckCoverage(const SIMULATION_STATE& state) {
    const GAP gap = FindGap(state.scene.image);
    if (gap.count == 0) return;
    Log().Message(LOGGING_LEVEL::WARNING, "%lld points are missing, rg=%d..%d, az=%d..%d: %s (DEM %s)", gap.count,
                  gap.first_sample, gap.last_sample, gap.first_line, gap.last_line, Cause(state, gap),
                  state.request.terrain.dem_file.Text());
    throw ERROR_PARAMETER();
}
