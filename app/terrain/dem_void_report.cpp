#include "app/terrain/dem_void_report.h"

#include <numbers>

#include "lib/baselib/logging/logging.h"

namespace {

struct INVALID_SAMPLES {
    long long count = 0;
    int first_row = 0;
    int first_column = 0;
};

INVALID_SAMPLES Count(const SIMULATION_STATE& state) {
    const DEM_RANGE& simulated = state.scene.simulated;
    INVALID_SAMPLES found;
    for (int row = simulated.first_row; row <= simulated.last_row; ++row) {
        for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
            if (!IsInvalidDemSample(state, state.scene.dem.heights[row][column])) continue;
            if (found.count++ == 0) {
                found.first_row = row;
                found.first_column = column;
            }
        }
    }
    return found;
}

}  // namespace

bool IsInvalidDemSample(const SIMULATION_STATE& state, short sample_m) {
    if (sample_m == kDemVoid_m) return true;
    const bool range_given = state.valid_dem_maximum_m > state.valid_dem_minimum_m;
    const auto height_m = static_cast<float>(sample_m);
    return range_given && (height_m < state.valid_dem_minimum_m || height_m > state.valid_dem_maximum_m);
}

void ReportDemVoids(const SIMULATION_STATE& state) {
    const INVALID_SAMPLES found = Count(state);
    if (found.count == 0) return;
    constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;
    const GEOGRAPHIC place = GeographicOfDemSample(state.scene.dem, found.first_column, found.first_row);
    Log().Message(LOGGING_LEVEL::WARNING,
                  "%s: %lld of the simulated samples are voids or outside the valid range; "
                  "the first at row %d, column %d (longitude %.6f, latitude %.6f). They are used as they are.",
                  state.configuration.dem_file.c_str(), found.count, found.first_row, found.first_column,
                  place.longitude_rad * kDegreesPerRadian, place.latitude_rad * kDegreesPerRadian);
}
