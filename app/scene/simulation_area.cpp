#include "app/scene/simulation_area.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "app/scene/azimuth_margin.h"
#include "app/scene/image_to_dem.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr int kTilesAzimuth = 10;
constexpr int kTilesRange = 10;

void LogCorners(const SIMULATION_STATE& state, const IMAGE_TO_DEM& locate) {
    const ACQUISITION& master = state.master;
    const DEM_POSITION corners[] = {
        locate(master.first_azimuth_time_s, master.first_range_time_s, kLowestTerrain_m),
        locate(master.azimuth_stop_time_s, master.first_range_time_s, kLowestTerrain_m),
        locate(master.first_azimuth_time_s, master.range_stop_time_s, kHighestTerrain_m),
        locate(master.azimuth_stop_time_s, master.range_stop_time_s, kHighestTerrain_m),
    };
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

void BuildTiles(SIMULATION_STATE& state, const IMAGE_TO_DEM& locate) {
    const ACQUISITION& master = state.master;
    const AZIMUTH_INTERVAL extended = ExtendedAzimuthInterval(state, locate, kTilesRange);
    SIMULATION_AREA& area = state.scene.area;
    area = {};
    for (int i = 0; i < kTilesAzimuth; ++i) {
        const double upper_s =
            i == 0 ? extended.first_s : Step(master.first_azimuth_time_s, master.azimuth_stop_time_s, i, kTilesAzimuth);
        const double lower_s = i + 1 == kTilesAzimuth ? extended.last_s
                                                      : Step(master.first_azimuth_time_s, master.azimuth_stop_time_s,
                                                             i + 1, kTilesAzimuth);
        for (int j = 0; j < kTilesRange; ++j) {
            const double near_s = Step(master.first_range_time_s, master.range_stop_time_s, j, kTilesRange);
            const double far_s = Step(master.first_range_time_s, master.range_stop_time_s, j + 1, kTilesRange);
            area.q1.push_back(locate(upper_s, near_s, kLowestTerrain_m).grid);
            area.q2.push_back(locate(lower_s, near_s, kLowestTerrain_m).grid);
            area.q3.push_back(locate(upper_s, far_s, kHighestTerrain_m).grid);
            area.q4.push_back(locate(lower_s, far_s, kHighestTerrain_m).grid);
        }
    }
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

void SetSimulatedRange(SCENE& scene) {
    CLAMPED_SPAN columns;
    CLAMPED_SPAN rows;
    for (const auto* list : {&scene.area.q1, &scene.area.q2, &scene.area.q3, &scene.area.q4}) {
        for (const POINT<double>& point : *list) {
            columns.Add(point.x);
            rows.Add(point.y);
        }
    }
    scene.simulated = {rows.First(scene.dem.rows), rows.Last(scene.dem.rows), columns.First(scene.dem.columns),
                       columns.Last(scene.dem.columns)};
    Log().Message(LOGGING_LEVEL::DEBUG, " - Corners in DEM for evaluation");
    Log().Message(LOGGING_LEVEL::DEBUG, "   x: %i -> %i", scene.simulated.first_column, scene.simulated.last_column);
    Log().Message(LOGGING_LEVEL::DEBUG, "   y: %i -> %i", scene.simulated.first_row, scene.simulated.last_row);
}

void RequireCommonCells(const SIMULATION_STATE& state) {
    const DEM_RANGE& simulated = state.scene.simulated;
    if (simulated.first_row < simulated.last_row && simulated.first_column < simulated.last_column) return;
    const POINT<double>& corner = state.scene.area.q1.front();
    Log().Message(LOGGING_LEVEL::ALARM,
                  "the DEM %s (%d columns, %d rows) does not cover the master scene: "
                  "its first line at near range lies at column %.1f, row %.1f (edges in %s)",
                  state.configuration.dem_file.c_str(), state.scene.dem.columns, state.scene.dem.rows, corner.x,
                  corner.y, state.configuration.dem_pool.c_str());
    throw ERROR_PARAMETER();
}

}  // namespace

void LocateSimulationArea(SIMULATION_STATE& state) {
    const IMAGE_TO_DEM locate(state);
    LogCorners(state, locate);
    BuildTiles(state, locate);
    LogAreaCorners(state.scene.area);
    SetSimulatedRange(state.scene);
    RequireCommonCells(state);
}
