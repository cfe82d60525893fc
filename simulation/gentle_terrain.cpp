#include "simulation/gentle_terrain.h"

#include <cmath>
#include <limits>
#include <utility>

#include "geometry/vector_arithmetic.h"
#include "simulation/neighbour_solver.h"
#include "simulation/radar_pixel.h"

namespace {

constexpr double kPartOfBound = 0.95;
constexpr double kClosest_m2 = 1e-4;  ///< at a pole columns meet
constexpr double kAnywhere = std::numeric_limits<double>::max();

/// A place on the ground with its vertical, and the direction of its profile.
struct GROUND {
    VECTOR_3D<double> point_m;
    VECTOR_3D<double> up;
    VECTOR_3D<double> outwards;  ///< level, away from the master's track
};

bool Keeps(double level, double upwards, double slope) {
    return slope * std::abs(upwards) < kPartOfBound * level;
}

/// Whether no slope up to the given one turns the order of ranges over, or averts the ground from the satellite.
bool IsGentleTowards(const VECTOR_3D<double>& satellite_m, const GROUND& ground, double slope) {
    const VECTOR_3D<double> sight = Unit(satellite_m - ground.point_m);
    const VECTOR_3D<double> overhead = Unit(satellite_m);
    const VECTOR_3D<double> across = overhead - DotProduct(overhead, sight) * sight;  // the look grows along it
    return Keeps(-DotProduct(sight, ground.outwards), DotProduct(sight, ground.up), slope) &&
           Keeps(DotProduct(across, ground.outwards), DotProduct(across, ground.up), slope);
}

/// A cell of the DEM at height 0, from its first corner.
struct LEVEL_CELL {
    VECTOR_3D<double> first_m;
    VECTOR_3D<double> right_m;
    VECTOR_3D<double> below_m;

    /// Whether its corners lie apart: at a pole they do not.
    [[nodiscard]] bool IsWide() const {
        return DotProduct(right_m, right_m) > kClosest_m2 && DotProduct(below_m, below_m) > kClosest_m2 &&
               Length(CrossProduct(right_m, below_m)) > kClosest_m2;
    }

    [[nodiscard]] VECTOR_3D<double> Up() const {
        const VECTOR_3D<double> up = Unit(CrossProduct(right_m, below_m));
        return DotProduct(up, first_m) < 0.0 ? -1.0 * up : up;
    }

    /// The greatest slope along a level direction that steps of this size make.
    [[nodiscard]] double Slope(const BLOCK_STEPS& steps, const VECTOR_3D<double>& direction) const {
        return steps.along_rows_m * std::abs(DotProduct(direction, right_m)) / DotProduct(right_m, right_m) +
               steps.along_columns_m * std::abs(DotProduct(direction, below_m)) / DotProduct(below_m, below_m);
    }
};

LEVEL_CELL LevelCell(const DEM_GRID& dem, int column, int row) {
    const VECTOR_3D<double> first_m = PlaceAtHeight(dem, column, row, 0.0);
    return {first_m, PlaceAtHeight(dem, column + 1, row, 0.0) - first_m,
            PlaceAtHeight(dem, column, row + 1, 0.0) - first_m};
}

/// Those at the first columns of a row's blocks; for the last row of all the cells above it.
std::vector<LEVEL_CELL> LevelCells(const DEM_GRID& dem, const DEM_BLOCKS& blocks, int row) {
    row = std::min(row, blocks.Range().last_row - 1);
    std::vector<LEVEL_CELL> cells;
    for (int j = 0; j < blocks.Columns(); ++j) cells.push_back(LevelCell(dem, blocks.Samples(0, j).first_column, row));
    return cells;
}

/// Looks at blocks, one beside the other.
class BLOCK_INSPECTION {
  public:
    BLOCK_INSPECTION(const SCENE& scene, const TERRAIN_BOUNDS& bounds)
        : dem_(scene.dem), bounds_(bounds), master_(scene.master), slave_(scene.slave) {}

    /// @param upper, lower  cells at the first row of the block and of the one below
    [[nodiscard]] bool IsGentle(const DEM_RANGE& block, const LEVEL_CELL& upper, const LEVEL_CELL& lower) {
        const BLOCK_HEIGHTS heights = HeightsOf(dem_, block);
        if (!bounds_.Hold(heights.lowest_m) || !bounds_.Hold(heights.highest_m)) return false;
        if (!upper.IsWide() || !lower.IsWide()) return false;
        GROUND ground{upper.first_m, upper.Up(), {}};
        ground.point_m = upper.first_m + heights.highest_m * ground.up;
        const auto seen = master_.Solve(ground.point_m);
        const auto seen_by_slave = slave_.Solve(ground.point_m);
        if (!seen || !seen_by_slave) return false;
        const ORBIT_STATE master = master_.State(seen->time_s);
        ground.outwards = Unit(CrossProduct(ground.up, master.velocity_m_s));
        if (DotProduct(ground.outwards, ground.point_m - master.position_m) < 0.0)
            ground.outwards = -1.0 * ground.outwards;
        const BLOCK_STEPS steps = StepsOf(dem_, block);
        const double slope = std::max(upper.Slope(steps, ground.outwards), lower.Slope(steps, ground.outwards));
        return IsGentleTowards(master.position_m, ground, slope) &&
               IsGentleTowards(slave_.State(seen_by_slave->time_s).position_m, ground, slope);
    }

    /// The samples between two of a block, on the block's rim.
    [[nodiscard]] GENTLE_TERRAIN::REACH ReachOf(const DEM_RANGE& rim, const BLOCK_HEIGHTS& heights) {
        GENTLE_TERRAIN::REACH reach = {kAnywhere, -kAnywhere, kAnywhere, -kAnywhere};
        const ACQUISITION_SCENE& master = master_.Acquisition();
        for (const double height_m : {heights.lowest_m, heights.highest_m}) {
            for (const bool at_end : {false, true}) {
                const auto seen = master_.Solve(PlaceAtHeight(dem_, at_end ? rim.last_column : rim.first_column,
                                                              at_end ? rim.last_row : rim.first_row, height_m));
                if (!seen) return {-kAnywhere, kAnywhere, -kAnywhere, kAnywhere};
                Extend(LineOf(master, seen->time_s), reach.first_line, reach.last_line);
                Extend(PixelOf(master, seen->range_m), reach.first_pixel, reach.last_pixel);
            }
        }
        Widen(reach.first_line, reach.last_line);
        Widen(reach.first_pixel, reach.last_pixel);
        return reach;
    }

  private:
    static void Extend(double value, double& first, double& last) {
        first = std::min(first, value);
        last = std::max(last, value);
    }

    /// Between the ends of a rim line and pixel run straight to well below this.
    static void Widen(double& first, double& last) {
        const double margin = 4.0 + 0.1 * (last - first);
        first -= margin;
        last += margin;
    }

    const DEM_GRID& dem_;
    TERRAIN_BOUNDS bounds_;
    NEIGHBOUR_SOLVER master_;
    NEIGHBOUR_SOLVER slave_;
};

/// The samples of a block that are the last of the DEM's range, towards each of its sides.
std::vector<DEM_RANGE> RimsOf(const DEM_RANGE& block, const DEM_RANGE& all) {
    std::vector<DEM_RANGE> rims;
    if (block.first_row == all.first_row)
        rims.push_back({block.first_row, block.first_row, block.first_column, block.last_column});
    if (block.last_row == all.last_row)
        rims.push_back({block.last_row, block.last_row, block.first_column, block.last_column});
    if (block.first_column == all.first_column)
        rims.push_back({block.first_row, block.last_row, block.first_column, block.first_column});
    if (block.last_column == all.last_column)
        rims.push_back({block.first_row, block.last_row, block.last_column, block.last_column});
    return rims;
}

}  // namespace

GENTLE_TERRAIN::GENTLE_TERRAIN(const SCENE& scene, const TERRAIN_BOUNDS& bounds, int samples)
    : blocks_(scene.simulated), samples_(samples) {
    BLOCK_INSPECTION inspection(scene, bounds);
    std::vector<LEVEL_CELL> lower;
    for (int i = 0; i < blocks_.Rows(); ++i) {
        const std::vector<LEVEL_CELL> upper =
            i == 0 ? LevelCells(scene.dem, blocks_, blocks_.Range().first_row) : std::move(lower);
        lower = LevelCells(scene.dem, blocks_, blocks_.Samples(i, 0).last_row);
        for (int j = 0; j < blocks_.Columns(); ++j) {
            const DEM_RANGE block = blocks_.Samples(i, j);
            gentle_.push_back(inspection.IsGentle(block, upper[j], lower[j]) ? 1 : 0);
            if (gentle_.back() == 0) continue;  // lines over it are looked at anyway
            for (const DEM_RANGE& rim : RimsOf(block, blocks_.Range()))
                ends_.push_back(inspection.ReachOf(rim, HeightsOf(scene.dem, block)));
        }
    }
}

bool GENTLE_TERRAIN::Holds(const SCENE& cells, int first_line, int end_line) const {
    for (const REACH& end : ends_) {
        const bool in_lines = end.first_line < end_line && end.last_line > first_line - 1;
        if (in_lines && end.first_pixel < samples_ && end.last_pixel > -1.0) return false;
    }
    const DEM_RANGE& range = blocks_.Range();
    for (std::size_t k = 0; k < cells.cells.size(); k += DEM_BLOCKS::kSize) {
        const CELL_RANGE& row = cells.cells[k];
        const int i = (cells.simulated.first_row - range.first_row + static_cast<int>(k)) / DEM_BLOCKS::kSize;
        for (int column = row.first_column; column < row.end_column; column += DEM_BLOCKS::kSize) {
            const int j = (column - range.first_column) / DEM_BLOCKS::kSize;
            if (gentle_[static_cast<std::size_t>(i) * static_cast<std::size_t>(blocks_.Columns()) +
                        static_cast<std::size_t>(j)] == 0)
                return false;
        }
    }
    return !cells.cells.empty();
}
