#include "app/scene/simulation_area.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "app/scene/azimuth_margin.h"
#include "app/terrain/terrain_bounds.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr int kTilesAzimuth = 10;
constexpr int kTilesRange = 10;

void LogCorners(const SCENE_CORNERS& corners) {
    Log().Message(LOGGING_LEVEL::DEBUG, " - Approximate coordinates of master in dem");
    int number = 0;
    for (const DEM_POSITION& corner : corners)
        Log().Message(LOGGING_LEVEL::DEBUG, "   pt. %d : lon=%.2f, lat=%.2f -> x=%.2f, y=%.2f", ++number,
                      corner.longitude_deg, corner.latitude_deg, corner.grid.x, corner.grid.y);
}

/// Time i of n equal steps from first to last.
double Step(double first, double last, int i, int n) {
    return first + (last - first) * i / n;
}

/// The tiles cover the image's own times; only the outermost edges in azimuth are moved outward (azimuth_margin.h).
SIMULATION_AREA BuildTiles(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate) {
    const AZIMUTH_INTERVAL extended = ExtendedAzimuthInterval(master, locate, kTilesRange);
    const auto azimuth_s = [&](int i) {
        return Step(master.first_azimuth_time_s, master.last_azimuth_time_s, i, kTilesAzimuth);
    };
    const auto range_s = [&](int j) { return Step(master.near_range_time_s, master.far_range_time_s, j, kTilesRange); };
    SIMULATION_AREA area;
    for (int i = 0; i < kTilesAzimuth; ++i) {
        const double upper_s = i == 0 ? extended.first_s : azimuth_s(i);
        const double lower_s = i + 1 == kTilesAzimuth ? extended.last_s : azimuth_s(i + 1);
        for (int j = 0; j < kTilesRange; ++j) {
            area.q1.push_back(locate(upper_s, range_s(j), kLowestTerrain_m).grid);
            area.q2.push_back(locate(lower_s, range_s(j), kLowestTerrain_m).grid);
            area.q3.push_back(locate(upper_s, range_s(j + 1), kHighestTerrain_m).grid);
            area.q4.push_back(locate(lower_s, range_s(j + 1), kHighestTerrain_m).grid);
        }
    }
    return area;
}

void LogAreaCorners(const SIMULATION_AREA& area) {
    const POINT<double> corners[] = {area.q1.front(), area.q2[area.q2.size() - kTilesRange], area.q3[kTilesRange - 1],
                                     area.q4.back()};
    Log().Message(LOGGING_LEVEL::DEBUG, " - Corners in DEM for evaluation");
    int number = 0;
    for (const POINT<double>& corner : corners)
        Log().Message(LOGGING_LEVEL::DEBUG, "   pt. %d : x=%.2f, y=%.2f", ++number, corner.x, corner.y);
}

/// Smallest and largest coordinates of all points, rounded outward and clamped to 0..size - 1.
class CLAMPED_SPAN {
  public:
    void Add(double value) {
        smallest_ = std::min(smallest_, value);
        largest_ = std::max(largest_, value);
    }
    int First(int size) const { return Clamped(std::floor(smallest_), size); }
    int Last(int size) const { return Clamped(std::ceil(largest_), size); }

  private:
    static int Clamped(double value, int size) { return static_cast<int>(std::clamp(value, 0.0, size - 1.0)); }

    double smallest_ = std::numeric_limits<double>::max();
    double largest_ = std::numeric_limits<double>::lowest();
};

DEM_RANGE SimulatedRange(const SIMULATION_AREA& area, const DEM_GRID& dem) {
    CLAMPED_SPAN columns;
    CLAMPED_SPAN rows;
    for (const auto* list : {&area.q1, &area.q2, &area.q3, &area.q4}) {
        for (const POINT<double>& point : *list) {
            columns.Add(point.x);
            rows.Add(point.y);
        }
    }
    const DEM_RANGE range{rows.First(dem.rows), rows.Last(dem.rows), columns.First(dem.columns),
                          columns.Last(dem.columns)};
    Log().Message(LOGGING_LEVEL::DEBUG, " - Corners in DEM for evaluation");
    Log().Message(LOGGING_LEVEL::DEBUG, "   x: %i -> %i", range.first_column, range.last_column);
    Log().Message(LOGGING_LEVEL::DEBUG, "   y: %i -> %i", range.first_row, range.last_row);
    return range;
}

}  // namespace

SCENE_CORNERS CornersOf(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate) {
    return {locate(master.first_azimuth_time_s, master.near_range_time_s, kLowestTerrain_m),
            locate(master.last_azimuth_time_s, master.near_range_time_s, kLowestTerrain_m),
            locate(master.first_azimuth_time_s, master.far_range_time_s, kHighestTerrain_m),
            locate(master.last_azimuth_time_s, master.far_range_time_s, kHighestTerrain_m)};
}

SCENE_IN_DEM LocateSimulationArea(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate, const DEM_GRID& dem) {
    const SCENE_CORNERS corners = CornersOf(master, locate);
    LogCorners(corners);
    SIMULATION_AREA area = BuildTiles(master, locate);
    LogAreaCorners(area);
    const DEM_RANGE simulated = SimulatedRange(area, dem);
    return {std::move(area), corners, simulated};
}
