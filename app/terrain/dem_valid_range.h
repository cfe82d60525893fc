/// \file dem_valid_range.h
/// The text of DEM_VALID: the range of valid DEM values.

#pragma once

#include <string>

struct DEM_VALID_RANGE {
    float minimum_m = 0.0F;  ///< 0 when the text holds no ".."
    float maximum_m = 0.0F;
};

/// "0..5000" gives 0 and 5000. Two dots end the minimum; what was collected since the last bound when the text ends,
/// possibly nothing (0), is the maximum. "<" opens a bracket; ">" closes it and stores a maximum as well, which the end
/// of the text then replaces: "<0..5000>" has the maximum 0, as it always had.
/// @throws ERROR_ARGUMENT for any other character or a bound outside the range of single precision
DEM_VALID_RANGE ParseDemValidRange(const std::string& text);
