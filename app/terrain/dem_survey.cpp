#include "app/terrain/dem_survey.h"

#include <algorithm>
#include <limits>

#include "app/terrain/odd_samples.h"
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

void ReportOdd(const ODD_SAMPLES& odd, const DEM_GRID& dem, const DEM_RANGE& simulated, const std::string& dem_file) {
    const DEM_RANGE& box = odd.box;
    Log().Message(
        LOGGING_LEVEL::WARNING,
        "%s: %lld of the simulated samples are voids or outside %g .. %g m, in rows %d..%d, columns %d..%d: %s. "
        "They are used as they are.",
        dem_file.c_str(), odd.count, static_cast<double>(kLowestLand_m), static_cast<double>(kHighestLand_m),
        box.first_row, box.last_row, box.first_column, box.last_column, Appearance(dem, simulated, odd).c_str());
}

/// A loop for either kind of samples: 16-bit ones are compared as integers.
template <class SAMPLE>
DEM_SURVEY Survey(const GRID_VIEW<const SAMPLE>& heights, const DEM_RANGE& simulated, const VALID_HEIGHTS& valid,
                  double offset_m, ODD_SAMPLES& odd) {
    DEM_SURVEY survey;
    SAMPLE lowest_m = std::numeric_limits<SAMPLE>::max();
    SAMPLE highest_m = std::numeric_limits<SAMPLE>::lowest();
    for (int row = simulated.first_row; row <= simulated.last_row; ++row) {
        for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
            const SAMPLE height_m = HeightOf(heights[row][column]);
            if (IsOdd(height_m)) odd.Add(row, column);
            if (!valid.Excludes(height_m)) {
                lowest_m = std::min(lowest_m, height_m);
                highest_m = std::max(highest_m, height_m);
            } else if (survey.excluded++ == 0) {
                survey.first_row = row;
                survey.first_column = column;
            }
        }
    }
    if (lowest_m <= highest_m) {
        survey.lowest_m = lowest_m + offset_m;
        survey.highest_m = highest_m + offset_m;
    }
    return survey;
}

}  // namespace

DEM_SURVEY SurveyDem(const DEM_GRID& dem, const DEM_RANGE& simulated, const VALID_HEIGHTS& valid,
                     const std::string& dem_file) {
    ODD_SAMPLES odd;
    const DEM_SURVEY survey = dem.real_heights ? Survey(dem.real_heights, simulated, valid, dem.height_offset_m, odd)
                                               : Survey(dem.heights, simulated, valid, dem.height_offset_m, odd);
    if (!valid.HasRange()) {
        if (odd.count > 0) ReportOdd(odd, dem, simulated, dem_file);
    } else if (survey.excluded > 0) {
        Report(survey, dem, dem_file);
    }
    return survey;
}
