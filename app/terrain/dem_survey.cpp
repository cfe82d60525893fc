#include "app/terrain/dem_survey.h"

#include <algorithm>

#include "app/terrain/terrain_bounds.h"
#include "geometry/constants.h"
#include "lib/baselib/logging/logging.h"

namespace {

void Report(const DEM_SURVEY& survey, const DEM_GRID& dem, const std::string& dem_file) {
    const GEOGRAPHIC place = GeographicOfDemSample(dem, survey.first_column, survey.first_row);
    Log().Message(LOGGING_LEVEL::WARNING,
                  "%s: %lld of the simulated samples are voids or outside the valid range; "
                  "the first at row %d, column %d (longitude %.6f, latitude %.6f). They are used as they are.",
                  dem_file.c_str(), survey.excluded, survey.first_row, survey.first_column,
                  place.longitude_rad * kDegreesPerRadian, place.latitude_rad * kDegreesPerRadian);
}

}  // namespace

DEM_SURVEY SurveyDem(const DEM_GRID& dem, const DEM_RANGE& simulated, const VALID_HEIGHTS& valid,
                     const std::string& dem_file) {
    DEM_SURVEY survey{.lowest_m = kHighestTerrain_m, .highest_m = kLowestTerrain_m};
    for (int row = simulated.first_row; row <= simulated.last_row; ++row) {
        for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
            const short sample_m = dem.heights[row][column];
            if (valid.Excludes(sample_m)) {
                if (survey.excluded++ == 0) std::tie(survey.first_row, survey.first_column) = std::pair(row, column);
                continue;
            }
            const double height_m = std::clamp(sample_m + dem.height_offset_m, kLowestTerrain_m, kHighestTerrain_m);
            survey.lowest_m = std::min(survey.lowest_m, height_m);
            survey.highest_m = std::max(survey.highest_m, height_m);
        }
    }
    if (survey.excluded > 0) Report(survey, dem, dem_file);
    return survey;
}
