#include "app/scene/azimuth_margin.h"

#include <algorithm>
#include <cmath>

#include "app/terrain/terrain_bounds.h"

namespace {

constexpr double kMarginLines = 10.0;
constexpr double kMarginAlongTrack_m = 40.0;
constexpr int kBorderSamples = 8;      ///< places along the border line where its bend is measured
constexpr double kBendReserve = 1.25;  ///< the bend between those places
constexpr double kTrialStep_s = 0.01;  ///< for the border line's motion in the DEM, about 70 m

double Distance(const VECTOR_3D<double>& a, const VECTOR_3D<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

double Cross(const POINT<double>& a, const POINT<double>& b) {
    return a.x * b.y - a.y * b.x;
}

POINT<double> Minus(const POINT<double>& a, const POINT<double>& b) {
    return {a.x - b.x, a.y - b.y};
}

/// One tile's share of a border line of the image: from near range and lowest terrain to far range and highest terrain.
class BORDER_LINE {
  public:
    /// @param trial_step_s  either sign, such that the orbit's data reach that far
    BORDER_LINE(const IMAGE_TO_DEM& locate, double time_s, double trial_step_s, double near_s, double far_s)
        : locate_(locate), time_s_(time_s), trial_s_(trial_step_s), near_s_(near_s), far_s_(far_s) {
        start_ = locate(time_s, near_s, kLowestTerrain_m);
        moved_ = locate(time_s + trial_s_, near_s, kLowestTerrain_m);
        end_ = locate(time_s, far_s, kHighestTerrain_m);
    }

    double GroundSpeed_m_s() const { return Distance(moved_.point_m, start_.point_m) / std::fabs(trial_s_); }

    /// The longest time by which the line must be moved until its straight chord passes the true line's points.
    /// A point's distance from the chord, as a cross product with it, over the distance by which the chord moves in a
    /// second, as the same product: the chord's length and the DEM's unequal cells cancel in the ratio, so no unit of
    /// length is needed. A chord that moves along itself can not reach the points: its margin is the fixed one.
    double Bend_s() const {
        const POINT<double> chord = Minus(end_.grid, start_.grid);
        const double motion_per_s = Cross(Minus(moved_.grid, start_.grid), chord) / trial_s_;
        if (motion_per_s == 0.0) return 0.0;
        double bend_s = 0.0;
        for (int i = 0; i <= kBorderSamples; ++i) {
            const double range_s = near_s_ + (far_s_ - near_s_) * i / kBorderSamples;
            for (const double height_m : {kLowestTerrain_m, kHighestTerrain_m}) {
                const POINT<double> off = Minus(locate_(time_s_, range_s, height_m).grid, start_.grid);
                bend_s = std::max(bend_s, std::fabs(Cross(off, chord) / motion_per_s));
            }
        }
        return bend_s * kBendReserve;
    }

    /// Diagonal of the DEM cell at the line's near end.
    double CellDiagonal_m() const;

  private:
    const IMAGE_TO_DEM& locate_;
    double time_s_;
    double trial_s_;
    double near_s_;
    double far_s_;
    DEM_POSITION start_;
    DEM_POSITION moved_;
    DEM_POSITION end_;
};

double BORDER_LINE::CellDiagonal_m() const {
    const double moved_cells = std::hypot(moved_.grid.x - start_.grid.x, moved_.grid.y - start_.grid.y);
    if (moved_cells == 0.0) return 0.0;
    // Cells are not square on the ground: the along-track figure is scaled by the diagonal of the unit cell and, for a
    // geographic grid, is largest along the meridian, where a column's width does not shrink.
    return std::sqrt(2.0) * Distance(moved_.point_m, start_.point_m) / moved_cells;
}

double TileMargin_s(const ACQUISITION_SCENE& master, const BORDER_LINE& line) {
    const double along_track_m = kMarginAlongTrack_m + line.CellDiagonal_m();
    return std::max(kMarginLines / master.prf_hz, along_track_m / line.GroundSpeed_m_s()) + line.Bend_s();
}

/// The margin of the first or last line: that of the tile that needs most.
double Margin_s(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate, double time_s, int tiles) {
    // The trial step goes where the orbit has data: some interpolations end the process outside them.
    const bool room_ahead = time_s + kTrialStep_s <= master.orbit.orbit->LastTime();
    const double near_s = master.near_range_time_s;
    const double step_s = (master.far_range_time_s - near_s) / tiles;
    double margin_s = 0.0;
    for (int j = 0; j < tiles; ++j) {
        const BORDER_LINE line(locate, time_s, room_ahead ? kTrialStep_s : -kTrialStep_s, near_s + j * step_s,
                               near_s + (j + 1) * step_s);
        margin_s = std::max(margin_s, TileMargin_s(master, line));
    }
    return margin_s;
}

}  // namespace

AZIMUTH_INTERVAL ExtendedAzimuthInterval(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate, int tiles) {
    const double first_s = master.first_azimuth_time_s;
    const double last_s = master.last_azimuth_time_s;
    const double earliest_s = std::min(first_s, master.orbit.orbit->FirstTime());
    const double latest_s = std::max(last_s, master.orbit.orbit->LastTime());
    return {std::max(first_s - Margin_s(master, locate, first_s, tiles), earliest_s),
            std::min(last_s + Margin_s(master, locate, last_s, tiles), latest_s)};
}
