#include "simulation/dem_lines.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "geometry/zero_doppler.h"
#include "orbit/compiled_orbit.h"
#include "simulation/dem_grid.h"

namespace {

using LINE_OF_HEIGHT = DEM_LINES::LINE_OF_HEIGHT;

constexpr int kBlock = 16;  ///< cells, both ways
constexpr double kMarginLines = 4.0;
constexpr double kMarginOfSpan = 0.1;
constexpr double kEverywhere = std::numeric_limits<double>::max();

int BlocksOf(int cells) {
    return (cells + kBlock - 1) / kBlock;
}

/// Solves corners of blocks, each with its neighbour's time as first guess.
class CORNER_SOLVER {
  public:
    CORNER_SOLVER(const SCENE& scene, const COMPILED_ORBIT& orbit) : scene_(scene), orbit_(orbit) {
        const double offset_s = scene.master.orbit.offset_s;
        data_ = {scene.master.orbit.orbit->FirstTime() - offset_s, scene.master.orbit.orbit->LastTime() - offset_s};
        guess_s_ = std::clamp(0.5 * (scene.master.first_azimuth_time_s + scene.master.last_azimuth_time_s),
                              data_.first_s, data_.last_s);
    }

    /// All corners of a DEM row.
    [[nodiscard]] std::vector<LINE_OF_HEIGHT> SolveRow(int row) {
        std::vector<LINE_OF_HEIGHT> corners;
        const DEM_RANGE& range = scene_.simulated;
        for (int column = range.first_column; column < range.last_column; column += kBlock)
            corners.push_back(Solve(column, row));
        corners.push_back(Solve(range.last_column, row));
        return corners;
    }

  private:
    [[nodiscard]] LINE_OF_HEIGHT Solve(int column, int row) {
        constexpr double kHeights_m[] = {0.0, 4000.0};
        const GEODETIC_PARAMETERS& geodetic = scene_.dem.geodetic;
        const GEOGRAPHIC place = GeographicOfDemSample(scene_.dem, column, row);
        double lines[2];
        for (int i = 0; i < 2; ++i) {
            const VECTOR_3D<double> point_m = DatumForward(
                geodetic.datum, GeographicToCartesian({place.longitude_rad, place.latitude_rad, kHeights_m[i]},
                                                      geodetic.a_m, geodetic.e2));
            const ZERO_DOPPLER solution =
                SolveZeroDoppler(orbit_, scene_.master.orbit.offset_s, point_m, guess_s_, data_);
            if (!solution.converged) return {0.0, 0.0, false};
            guess_s_ = solution.time_s;
            lines[i] = (solution.time_s - scene_.master.first_azimuth_time_s) * scene_.master.prf_hz;
        }
        return {lines[0], (lines[1] - lines[0]) / (kHeights_m[1] - kHeights_m[0]), true};
    }

    const SCENE& scene_;
    const COMPILED_ORBIT& orbit_;
    TIME_WINDOW data_{};
    double guess_s_;
};

/// Lowest and highest terrain of a block, its far corners included.
struct HEIGHTS {
    double lowest_m;
    double highest_m;
};

HEIGHTS HeightsOf(const DEM_GRID& dem, const DEM_RANGE& block) {
    float lowest_m = std::numeric_limits<float>::max();
    float highest_m = std::numeric_limits<float>::lowest();
    const auto look_at = [&](const auto& heights) {
        for (int row = block.first_row; row <= block.last_row; ++row) {
            for (int column = block.first_column; column <= block.last_column; ++column) {
                const float height_m = HeightOf(heights[row][column]);
                lowest_m = std::min(lowest_m, height_m);
                highest_m = std::max(highest_m, height_m);
            }
        }
    };
    if (dem.real_heights)
        look_at(dem.real_heights);
    else
        look_at(dem.heights);
    return {lowest_m + dem.height_offset_m, highest_m + dem.height_offset_m};
}

COMPILED_ORBIT Compiled(const ACQUISITION_SCENE& master) {
    constexpr double kMargin_s = 1.0;
    return {*master.orbit.orbit, master.first_azimuth_time_s + master.orbit.offset_s - kMargin_s,
            master.last_azimuth_time_s + master.orbit.offset_s + kMargin_s};
}

}  // namespace

DEM_LINES::DEM_LINES(const SCENE& scene)
    : range_(scene.simulated),
      block_rows_(BlocksOf(range_.last_row - range_.first_row)),
      block_columns_(BlocksOf(range_.last_column - range_.first_column)) {
    spans_.reserve(static_cast<std::size_t>(block_rows_) * static_cast<std::size_t>(block_columns_));
    const COMPILED_ORBIT orbit = Compiled(scene.master);
    CORNER_SOLVER solver(scene, orbit);
    std::vector<LINE_OF_HEIGHT> upper;
    std::vector<LINE_OF_HEIGHT> lower = solver.SolveRow(range_.first_row);
    for (int i = 0; i < block_rows_; ++i) {
        const int first_row = range_.first_row + i * kBlock;
        const int last_row = std::min(first_row + kBlock, range_.last_row);
        upper = std::exchange(lower, solver.SolveRow(last_row));
        for (int j = 0; j < block_columns_; ++j) {
            const int first_column = range_.first_column + j * kBlock;
            const DEM_RANGE block = {first_row, last_row, first_column,
                                     std::min(first_column + kBlock, range_.last_column)};
            spans_.push_back(SpanOf(scene.dem, block, {upper[j], upper[j + 1], lower[j], lower[j + 1]}));
        }
    }
}

DEM_LINES::SPAN DEM_LINES::SpanOf(const DEM_GRID& dem, const DEM_RANGE& block,
                                  std::initializer_list<LINE_OF_HEIGHT> corners) {
    const HEIGHTS heights = HeightsOf(dem, block);
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
    scene.cells.clear();
    scene.simulated.last_row = scene.simulated.first_row = range_.first_row;
    for (int i = 0; i < block_rows_; ++i) {
        const auto begin = spans_.begin() + static_cast<std::ptrdiff_t>(i) * block_columns_;
        const auto end = begin + block_columns_;
        const auto first = std::find_if(begin, end, reaches);
        const int first_row = range_.first_row + i * kBlock;
        const int end_row = std::min(first_row + kBlock, range_.last_row);
        if (first == end && scene.cells.empty()) {
            scene.simulated.first_row = end_row;
            continue;
        }
        const auto last = std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first), reaches);
        const int first_column = range_.first_column + static_cast<int>(first - begin) * kBlock;
        const int end_column =
            std::min(range_.first_column + static_cast<int>(last.base() - begin) * kBlock, range_.last_column);
        scene.cells.insert(scene.cells.end(), static_cast<std::size_t>(end_row - first_row),
                           {first_column, std::max(first_column, end_column)});
        if (first != end) scene.simulated.last_row = end_row;
    }
    if (scene.cells.empty())
        scene.simulated = {range_.first_row, range_.first_row, range_.first_column, range_.last_column};
}
