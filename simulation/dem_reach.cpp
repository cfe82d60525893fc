#include "simulation/dem_reach.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "simulation/neighbour_solver.h"
#include "simulation/radar_pixel.h"

namespace {

using PIXEL_OF_HEIGHT = DEM_REACH::PIXEL_OF_HEIGHT;

constexpr double kHeights_m[] = {0.0, 4000.0};
constexpr double kMarginLines = 4.0;
constexpr double kMarginPixels = 4.0;
constexpr double kMarginOfSpan = 0.1;
constexpr double kEverywhere = std::numeric_limits<double>::max();

/// The master's pixel of corners of blocks.
class CORNER_SOLVER {
  public:
    CORNER_SOLVER(const SCENE& scene, const DEM_BLOCKS& blocks)
        : dem_(scene.dem), range_(blocks.Range()), master_(scene.master) {}

    /// All corners of a DEM row.
    [[nodiscard]] std::vector<PIXEL_OF_HEIGHT> SolveRow(int row) {
        std::vector<PIXEL_OF_HEIGHT> corners;
        for (int column = range_.first_column; column < range_.last_column; column += DEM_BLOCKS::kSize)
            corners.push_back(Solve(column, row));
        corners.push_back(Solve(range_.last_column, row));
        return corners;
    }

  private:
    [[nodiscard]] PIXEL_OF_HEIGHT Solve(int column, int row) {
        const ACQUISITION_SCENE& master = master_.Acquisition();
        const auto low = master_.Solve(PlaceAtHeight(dem_, column, row, kHeights_m[0]));
        const auto high = low ? master_.Solve(PlaceAtHeight(dem_, column, row, kHeights_m[1])) : std::nullopt;
        if (!high) return {{}, {}, 0.0, 0.0, false};
        const POINT<double> at_zero = {PixelOf(master, low->range_m), LineOf(master, low->time_s)};
        const double height_m = kHeights_m[1] - kHeights_m[0];
        return {at_zero,
                {(PixelOf(master, high->range_m) - at_zero.x) / height_m,
                 (LineOf(master, high->time_s) - at_zero.y) / height_m},
                PixelOf(master, 1.0) - PixelOf(master, 0.0),
                std::min(low->range_m, high->range_m),
                true};
    }

    const DEM_GRID& dem_;
    const DEM_RANGE& range_;
    NEIGHBOUR_SOLVER master_;
};

/// How far a range may lie from the straight line through those of two heights: its second derivative over the height
/// is below 1 / range. Twice as far, since the range of the height itself may be shorter.
double BendOfRange(const PIXEL_OF_HEIGHT& corner, double height_m) {
    return std::abs((height_m - kHeights_m[0]) * (height_m - kHeights_m[1])) / corner.range_m * corner.pixels_per_metre;
}

}  // namespace

void DEM_REACH::SPAN::Take(double value, double margin) {
    first = std::min(first, value - margin);
    last = std::max(last, value + margin);
}

void DEM_REACH::SPAN::Widen(double margin) {
    margin += kMarginOfSpan * (last - first);
    first -= margin;
    last += margin;
}

DEM_REACH::DEM_REACH(const SCENE& scene) : blocks_(scene.simulated) {
    reach_.reserve(static_cast<std::size_t>(blocks_.Rows()) * static_cast<std::size_t>(blocks_.Columns()));
    CORNER_SOLVER solver(scene, blocks_);
    std::vector<PIXEL_OF_HEIGHT> upper;
    std::vector<PIXEL_OF_HEIGHT> lower = solver.SolveRow(blocks_.Range().first_row);
    for (int i = 0; i < blocks_.Rows(); ++i) {
        upper = std::exchange(lower, solver.SolveRow(blocks_.Samples(i, 0).last_row));
        for (int j = 0; j < blocks_.Columns(); ++j)
            reach_.push_back(
                ReachOf(scene.dem, blocks_.Samples(i, j), {upper[j], upper[j + 1], lower[j], lower[j + 1]}));
    }
}

DEM_REACH::REACH DEM_REACH::ReachOf(const DEM_GRID& dem, const DEM_RANGE& block,
                                    std::initializer_list<PIXEL_OF_HEIGHT> corners) {
    const BLOCK_HEIGHTS heights = HeightsOf(dem, block);
    REACH reach = {{kEverywhere, -kEverywhere}, {kEverywhere, -kEverywhere}};
    for (const PIXEL_OF_HEIGHT& corner : corners) {
        if (!corner.known) return {{-kEverywhere, kEverywhere}, {-kEverywhere, kEverywhere}};
        for (const double height_m : {heights.lowest_m, heights.highest_m}) {
            reach.lines.Take(corner.at_zero.y + corner.per_metre.y * height_m, 0.0);
            reach.pixels.Take(corner.at_zero.x + corner.per_metre.x * height_m, BendOfRange(corner, height_m));
        }
    }
    reach.lines.Widen(kMarginLines);
    reach.pixels.Widen(kMarginPixels);
    return reach;
}

void DEM_REACH::LimitTo(int first_line, int end_line, SCENE& scene) const {
    Limit([=](const REACH& reach) { return reach.lines.Meets(first_line, end_line); }, scene);
}

void DEM_REACH::LimitTo(int first_line, int end_line, int samples, SCENE& scene) const {
    Limit([=](const REACH& reach) { return reach.lines.Meets(first_line, end_line) && reach.pixels.Meets(0, samples); },
          scene);
}

template <class REACHES>
void DEM_REACH::Limit(REACHES reaches, SCENE& scene) const {
    const DEM_RANGE& range = blocks_.Range();
    scene.cells.clear();
    scene.simulated.last_row = scene.simulated.first_row = range.first_row;
    for (int i = 0; i < blocks_.Rows(); ++i) {
        const auto begin = reach_.begin() + static_cast<std::ptrdiff_t>(i) * blocks_.Columns();
        const auto end = begin + blocks_.Columns();
        const auto first = std::find_if(begin, end, reaches);
        const DEM_RANGE rows = blocks_.Samples(i, 0);
        const auto row_count = static_cast<std::size_t>(rows.last_row - rows.first_row);
        if (first == end) {  // between others where mountains are seen far beside their place
            if (scene.cells.empty())
                scene.simulated.first_row = rows.last_row;
            else
                scene.cells.insert(scene.cells.end(), row_count, {range.first_column, range.first_column});
            continue;
        }
        const auto last = std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first), reaches);
        const int first_column = range.first_column + static_cast<int>(first - begin) * DEM_BLOCKS::kSize;
        const int end_column =
            std::min(range.first_column + static_cast<int>(last.base() - begin) * DEM_BLOCKS::kSize, range.last_column);
        scene.cells.insert(scene.cells.end(), row_count, {first_column, end_column});
        scene.simulated.last_row = rows.last_row;
    }
    if (scene.cells.empty())
        scene.simulated = {range.first_row, range.first_row, range.first_column, range.last_column};
}
