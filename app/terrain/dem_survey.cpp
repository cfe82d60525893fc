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

template <class SAMPLE>
struct LIMITS {
    SAMPLE lowest_m = std::numeric_limits<SAMPLE>::max();
    SAMPLE highest_m = std::numeric_limits<SAMPLE>::lowest();

    void Take(SAMPLE height_m) {
        lowest_m = std::min(lowest_m, height_m);
        highest_m = std::max(highest_m, height_m);
    }
};

/// Without a way out of the loop, which becomes vector code for 16-bit samples.
template <class SAMPLE>
LIMITS<SAMPLE> LimitsOf(const SAMPLE* samples, int count) {
    LIMITS<SAMPLE> limits;
    for (int i = 0; i < count; ++i) limits.Take(HeightOf(samples[i]));
    return limits;
}

/// A loop for either kind of samples: 16-bit ones are compared as integers. Rows whose lowest and highest samples are
/// heights have no others.
template <class SAMPLE>
DEM_SURVEY Survey(const GRID_VIEW<const SAMPLE>& heights, const DEM_RANGE& simulated, const VALID_HEIGHTS& valid,
                  double offset_m, ODD_SAMPLES& odd) {
    DEM_SURVEY survey;
    LIMITS<SAMPLE> limits;
    const auto is_height = [&](SAMPLE height_m) { return !IsOdd(height_m) && !valid.Excludes(height_m); };
    for (int row = simulated.first_row; row <= simulated.last_row; ++row) {
        const LIMITS<SAMPLE> of_row =
            LimitsOf(heights[row] + simulated.first_column, simulated.last_column - simulated.first_column + 1);
        if (is_height(of_row.lowest_m) && is_height(of_row.highest_m)) {
            limits.Take(of_row.lowest_m);
            limits.Take(of_row.highest_m);
            continue;
        }
        for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
            const SAMPLE height_m = HeightOf(heights[row][column]);
            if (IsOdd(height_m)) odd.Add(row, column);
            if (!valid.Excludes(height_m)) {
                limits.Take(height_m);
            } else if (survey.excluded++ == 0) {
                survey.first_row = row;
                survey.first_column = column;
            }
        }
    }
    if (limits.lowest_m <= limits.highest_m) {
        survey.lowest_m = limits.lowest_m + offset_m;
        survey.highest_m = limits.highest_m + offset_m;
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
