#include "app/products/coverage_check.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "app/scene/image_to_dem.h"
#include "app/scene/scene_meets_dem.h"
#include "app/simulation_state.h"
#include "app/terrain/terrain_bounds.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// Where a pixel may lie in the DEM: between the places of the lowest and of the highest terrain.
class PIXEL_IN_DEM {
  public:
    PIXEL_IN_DEM(const SIMULATION_STATE& state, double sample, double line)
        : state_(state), locate_(state.acquisitions, state.scene.dem) {
        const ACQUISITION_SCENE& master = state.scene.master;
        azimuth_s_ = master.first_azimuth_time_s + line / master.prf_hz;
        range_s_ = master.near_range_time_s + sample / master.rsf_hz;
        lowest_ = Place(std::clamp(state.survey.lowest_m, kLowestTerrain_m, kHighestTerrain_m));
        highest_ = Place(std::clamp(state.survey.highest_m, kLowestTerrain_m, kHighestTerrain_m));
    }

    bool LeavesDem() const { return !IsInDem(lowest_) || !IsInDem(highest_); }

    bool CrossesVoid() const {
        return AnySample(lowest_, highest_, [this](float sample_m) { return state_.valid_heights.Excludes(sample_m); });
    }

    /// The kernel looks at cells whose place lies between those of the lowest and highest terrain that it allows for.
    bool LeavesHeights() const {
        const double offset_m = state_.scene.dem.height_offset_m;
        return AnySample(Place(state_.survey.lowest_m), Place(state_.survey.highest_m), [&](float sample_m) {
            const double height_m = sample_m + offset_m;
            return height_m < kLowestTerrain_m || height_m > kHighestTerrain_m;
        });
    }

    bool HasLargeCells() const {
        constexpr double kSamples = 1000.0;
        const double farther_s = range_s_ + kSamples / state_.scene.master.rsf_hz;
        const POINT<double> here = locate_(azimuth_s_, range_s_, 0.0).grid;
        const POINT<double> beside = locate_(azimuth_s_, farther_s, 0.0).grid;
        return std::hypot(beside.x - here.x, beside.y - here.y) < 1.0;
    }

  private:
    POINT<double> Place(double height_m) const { return locate_(azimuth_s_, range_s_, height_m).grid; }

    /// Whether the test holds for a sample of the box between two places, or for one of its neighbours.
    template <class TEST>
    bool AnySample(const POINT<double>& a, const POINT<double>& b, TEST test) const {
        const DEM_GRID& dem = state_.scene.dem;
        constexpr int kNeighbours = 2;
        const auto clamped = [](double value, int size) {
            return static_cast<int>(std::clamp(value, 0.0, size - 1.0));
        };
        const int bottom = clamped(std::max(a.y, b.y) + kNeighbours, dem.rows);
        const int left = clamped(std::min(a.x, b.x) - kNeighbours, dem.columns);
        const int right = clamped(std::max(a.x, b.x) + kNeighbours, dem.columns);
        for (int row = clamped(std::min(a.y, b.y) - kNeighbours, dem.rows); row <= bottom; ++row) {
            for (int column = left; column <= right; ++column) {
                if (test(dem.Height(column, row))) return true;
            }
        }
        return false;
    }

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

const char* Cause(const SIMULATION_STATE& state, const COVERAGE_GAP& gap) {
    bool leaves = false;
    bool crosses_void = false;
    bool large_cells = false;
    bool leaves_heights = false;
    const std::pair<int, int> places[] = {{gap.sample_in_first_line, gap.first_line},
                                          {gap.first_sample, gap.first_line},
                                          {gap.last_sample, gap.first_line},
                                          {gap.first_sample, gap.last_line},
                                          {gap.last_sample, gap.last_line}};
    for (const auto& [sample, line] : places) {
        const PIXEL_IN_DEM pixel(state, sample, line);
        leaves = leaves || pixel.LeavesDem();
        crosses_void = crosses_void || pixel.CrossesVoid();
        large_cells = large_cells || pixel.HasLargeCells();
        leaves_heights = leaves_heights || pixel.LeavesHeights();
    }
    if (large_cells) return "the DEM's cells are larger than 1000 samples";
    if (crosses_void) return "a void of the DEM lies there";
    if (leaves) return "the DEM ends there";
    if (leaves_heights) return "the terrain lies outside -1000 .. 9000 m, the heights that are simulated";
    return "the DEM covers the place; its terrain may be too steep for its cells";
}

}  // namespace

void COVERAGE_GAP::Add(const GRID_VIEW<const unsigned char>& mask) {
    for (int line = mask.first_row; line < mask.EndRow(); ++line) {
        const unsigned char* row = mask[line];
        if (std::memchr(row, 0, static_cast<std::size_t>(mask.columns)) == nullptr) continue;
        for (int sample = 0; sample < mask.columns; ++sample) {
            if (row[sample] == 0) Add(sample, line);
        }
    }
}

void COVERAGE_GAP::Add(int sample, int line) {
    if (count++ == 0) {
        first_sample = last_sample = sample_in_first_line = sample;
        first_line = line;
    }
    first_sample = std::min(first_sample, sample);
    last_sample = std::max(last_sample, sample);
    last_line = line;
}

void RequireCoverage(const SIMULATION_STATE& state, const COVERAGE_GAP& gap) {
    if (gap.IsEmpty()) return;
    WarnAboutMissingPoint(gap.sample_in_first_line, gap.first_line);
    Log().Message(LOGGING_LEVEL::WARNING, "%lld points are missing, rg=%d..%d, az=%d..%d: %s (DEM %s)", gap.count,
                  gap.first_sample, gap.last_sample, gap.first_line, gap.last_line, Cause(state, gap),
                  state.request.terrain.dem_file.Text());
    throw ERROR_PARAMETER();
}
