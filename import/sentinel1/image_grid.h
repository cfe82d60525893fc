/// \file image_grid.h
/// The grid of lines that an annotation describes.
/// The bursts of a swath overlap; on the ground they are one image, whose lines stand at azimuthTimeInterval from the
/// first burst's first line to the last burst's last line (the deburst grid). A single burst, or a stripmap image, is
/// its own grid. Line 0 is the first one.

#pragma once

#include <optional>

#include "import/sentinel1/annotation.h"

struct IMAGE_GRID {
    UNIVERSAL_TIME first_line;
    UNIVERSAL_TIME last_line;  ///< rounded to the microsecond
    long long lines = 0;
    long long samples = 0;
    INDEX_RANGE valid_lines;
    INDEX_RANGE valid_samples;          ///< valid on some line
    double largest_burst_offset = 0.0;  ///< of a burst's first line from a line of the grid, in lines
};

/// @param burst  counted from 1. @throws COMPANION_ERROR for a burst that is not there, or bursts out of the grid
[[nodiscard]] IMAGE_GRID ImageGridOf(const S1_ANNOTATION& image, const std::optional<int>& burst);
