/// \file dem_raster.h
/// Heights row by row into the processor's raster format, whole metres or 32-bit reals.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "import/dem/sample_grid.h"

/// Where a height is missing the file holds -32768, in either pixel type.
inline constexpr short kVoidSample_m = -32768;

struct HEIGHT_STATISTICS {
    long long voids = 0;
    double lowest_m = 0.0;  ///< of the samples as they are written; 0 without any
    double highest_m = 0.0;
    double largest_rounding_error_m = 0.0;
};

/// Fills a row of heights in metres, NaN where there is none.
using HEIGHT_ROW_READER = std::function<void(long long row, std::vector<double>& heights_m)>;

/// @param path  for messages: the file's later name
/// @throws COMPANION_ERROR for a height that the pixel type does not hold, and when the file cannot be written
[[nodiscard]] HEIGHT_STATISTICS WriteDemRaster(const std::string& temporary, const std::string& path,
                                               const SAMPLE_GRID& grid, bool as_float,
                                               const HEIGHT_ROW_READER& read_row);
