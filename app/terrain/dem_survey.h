/// \file dem_survey.h
/// What the simulated part of the DEM holds.

#pragma once

#include <string>

#include "app/terrain/valid_heights.h"
#include "simulation/scene.h"

struct DEM_SURVEY {
    long long excluded = 0;  ///< samples that can not be heights
    int first_row = 0;       ///< of the first of them
    int first_column = 0;
    double lowest_m = 0.0;  ///< terrain, offset included; 0 when every sample is excluded
    double highest_m = 0.0;
};

/// Looks at every sample of the simulated rows and columns. Excluded ones are reported once at WARNING, with their
/// number and the first position; their values are used as they are. Without a range of valid heights samples outside
/// -500 .. 9000 m count as well, and the report tells the box around them and what they look like.
/// @param dem_file  for the report
[[nodiscard]] DEM_SURVEY SurveyDem(const DEM_GRID& dem, const DEM_RANGE& simulated, const VALID_HEIGHTS& valid,
                                   const std::string& dem_file);
