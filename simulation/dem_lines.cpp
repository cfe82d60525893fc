#include "simulation/dem_lines.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "simulation/neighbour_solver.h"

namespace {

using LINE_OF_HEIGHT = DEM_LINES::LINE_OF_HEIGHT;

constexpr double kMarginLines = 4.0;
constexpr double kMarginOfSpan = 0.1;
constexpr double kEverywhere = std::numeric_limits<double>::max();

/// The master's azimuth pixel of corners of blocks.
class CORNER_SOLVER {
  public:
    CORNER_SOLVER(const SCENE& scene, const DEM_BLOCKS& blocks)
        : dem_(scene.dem), range_(blocks.Range()), master_(scene.master) {}

    /// All corners of a DEM row.
    [[nodiscard]] std::vector<LINE_OF_HEIGHT> SolveRow(int row) {
        std::vector<LINE_OF_HEIGHT> corners;
        for (int column = range_.first_column; column < range_.last_column; column += DEM_BLOCKS::kSize)
            corners.push_back(Solve(column, row));
        corners.push_back(Solve(range_.last_column, row));
        return corners;
    }

  private:
    [[nodiscard]] LINE_OF_HEIGHT Solve(int column, int row) {
        constexpr double kHeights_m[] = {0.0, 4000.0};
        const ACQUISITION_SCENE& master = master_.Acquisition();
        double lines[2];
        for (int i = 0; i < 2; ++i) {
            const auto solution = master_.Solve(PlaceAtHeight(dem_, column, row, kHeights_m[i]));
            if (!solution) return {0.0, 0.0, false};
            lines[i] = (solution->time_s - master.first_azimuth_time_s) * master.prf_hz;
        }
        return {lines[0], (lines[1] - lines[0]) / (kHeights_m[1] - kHeights_m[0]), true};
    }

    const DEM_GRID& dem_;
    const DEM_RANGE& range_;
    NEIGHBOUR_SOLVER master_;
};

}  // namespace

DEM_LINES::DEM_LINES(const SCENE& scene) : blocks_(scene.simulated) {
    spans_.reserve(static_cast<std::size_t>(blocks_.Rows()) * static_cast<std::size_t>(blocks_.Columns()));
    CORNER_SOLVER solver(scene, blocks_);
    std::vector<LINE_OF_HEIGHT> upper;
    std::vector<LINE_OF_HEIGHT> lower = solver.SolveRow(blocks_.Range().first_row);
    for (int i = 0; i < blocks_.Rows(); ++i) {
        upper = std::exchange(lower, solver.SolveRow(blocks_.Samples(i, 0).last_row));
        for (int j = 0; j < blocks_.Columns(); ++j)
            spans_.push_back(
                SpanOf(scene.dem, blocks_.Samples(i, j), {upper[j], upper[j + 1], lower[j], lower[j + 1]}));
    }
}

DEM_LINES::SPAN DEM_LINES::SpanOf(const DEM_GRID& dem, const DEM_RANGE& block,
                                  std::initializer_list<LINE_OF_HEIGHT> corners) {
    const BLOCK_HEIGHTS heights = HeightsOf(dem, block);
    SPAN span = {kEverywhere, -kEverywhere};
    for (const LINE_OF_HEIGHT& corner : corners) {
        if (!corner.known) return {-kEverywhere, kEverywhere};
        for (const double height_m : {heights.lowest_m, heights.highest_m}) {
            const double line = corner.at_zero + corner.per_metre * height_m;
            span = {std::min(span.first, line), std::max(span.last, line)};
        }
    }
    const double margin = kMarginLines + kMarginOfSpan * (span.last - span.first);
    return {span.first - margin, span.last + margin};
}

void DEM_LINES::LimitTo(int first_line, int end_line, SCENE& scene) const {
    const auto reaches = [=](const SPAN& span) { return span.first < end_line && span.last > first_line - 1; };
    const DEM_RANGE& range = blocks_.Range();
    scene.cells.clear();
    scene.simulated.last_row = scene.simulated.first_row = range.first_row;
    for (int i = 0; i < blocks_.Rows(); ++i) {
        const auto begin = spans_.begin() + static_cast<std::ptrdiff_t>(i) * blocks_.Columns();
        const auto end = begin + blocks_.Columns();
        const auto first = std::find_if(begin, end, reaches);
        const DEM_RANGE rows = blocks_.Samples(i, 0);
        if (first == end && scene.cells.empty()) {
            scene.simulated.first_row = rows.last_row;
            continue;
        }
        const auto last = std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first), reaches);
        const int first_column = range.first_column + static_cast<int>(first - begin) * DEM_BLOCKS::kSize;
        const int end_column =
            std::min(range.first_column + static_cast<int>(last.base() - begin) * DEM_BLOCKS::kSize, range.last_column);
        scene.cells.insert(scene.cells.end(), static_cast<std::size_t>(rows.last_row - rows.first_row),
                           {first_column, std::max(first_column, end_column)});
        if (first != end) scene.simulated.last_row = rows.last_row;
    }
    if (scene.cells.empty())
        scene.simulated = {range.first_row, range.first_row, range.first_column, range.last_column};
}
