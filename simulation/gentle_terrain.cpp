#include "simulation/gentle_terrain.h"

#include <cmath>
#include <limits>

#include "geometry/vector_arithmetic.h"
#include "simulation/neighbour_solver.h"
#include "simulation/radar_pixel.h"

namespace {

constexpr double kPartOfBound = 0.95;
constexpr double kAbove_m = 1000.0;   ///< tells the vertical
constexpr double kSteep = 1e6;        ///< a slope that is never gentle
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

/// Looks at blocks, one beside the other.
class BLOCK_INSPECTION {
  public:
    BLOCK_INSPECTION(const SCENE& scene, const TERRAIN_BOUNDS& bounds)
        : dem_(scene.dem), bounds_(bounds), master_(scene.master), slave_(scene.slave) {}

    [[nodiscard]] bool IsGentle(const DEM_RANGE& block) {
        const BLOCK_HEIGHTS heights = HeightsOf(dem_, block);
        if (!bounds_.Hold(heights.lowest_m) || !bounds_.Hold(heights.highest_m)) return false;
        const VECTOR_3D<double> point_m = PlaceAtHeight(dem_, block.first_column, block.first_row, heights.highest_m);
        const auto seen = master_.Solve(point_m);
        const auto seen_by_slave = slave_.Solve(point_m);
        if (!seen || !seen_by_slave) return false;
        const ORBIT_STATE master = master_.State(seen->time_s);
        const VECTOR_3D<double> above_m =
            PlaceAtHeight(dem_, block.first_column, block.first_row, heights.highest_m + kAbove_m);
        GROUND ground{point_m, Unit(above_m - point_m), {}};
        ground.outwards = Unit(CrossProduct(ground.up, master.velocity_m_s));
        if (DotProduct(ground.outwards, point_m - master.position_m) < 0.0) ground.outwards = -1.0 * ground.outwards;
        const double slope = GreatestSlope(block, ground.outwards);
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

    /// Along the profiles.
    [[nodiscard]] double GreatestSlope(const DEM_RANGE& block, const VECTOR_3D<double>& outwards) const {
        const BLOCK_STEPS steps = StepsOf(dem_, block);
        double slope = 0.0;
        for (const int row : {block.first_row, block.last_row - 1}) {
            const VECTOR_3D<double> here = PlaceAtHeight(dem_, block.first_column, row, 0.0);
            const VECTOR_3D<double> right = PlaceAtHeight(dem_, block.first_column + 1, row, 0.0) - here;
            const VECTOR_3D<double> below = PlaceAtHeight(dem_, block.first_column, row + 1, 0.0) - here;
            const double right2 = DotProduct(right, right);
            const double below2 = DotProduct(below, below);
            if (!(right2 > kClosest_m2) || !(below2 > kClosest_m2)) return kSteep;
            slope = std::max(slope, steps.along_rows_m * std::abs(DotProduct(outwards, right)) / right2 +
                                        steps.along_columns_m * std::abs(DotProduct(outwards, below)) / below2);
        }
        return slope;
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
    for (int i = 0; i < blocks_.Rows(); ++i) {
        for (int j = 0; j < blocks_.Columns(); ++j) {
            const DEM_RANGE block = blocks_.Samples(i, j);
            gentle_.push_back(inspection.IsGentle(block) ? 1 : 0);
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
