/// \file stack_image.h
/// An image of a stack: its pool, ready to be copied into the folders of its pairs, and its acquisition.

#pragma once

#include <string>
#include <vector>

#include "import/pools/acquisition.h"
#include "import/stack/image_table.h"

struct STACK_IMAGE {
    std::string name;
    ACQUISITION_OF_POOL acquisition;  ///< its pool's path is that of the user's file, for messages
    double side = 0.0;                ///< +1 right, -1 left
    double first_line_s = 0.0;        ///< on the time axis of the stack's first image
    std::string pool_text;
};

/// Reads each file once.
/// @param folder         where NAME.pool is written
/// @param interpolation  of all orbits; empty: what suits each one's state vectors
/// @throws COMPANION_ERROR that begins with line and column of the table; also for images whose times count on
///         different axes (UTC and plain seconds)
[[nodiscard]] std::vector<STACK_IMAGE> MakeImages(const std::vector<IMAGE_ROW>& rows, const std::string& folder,
                                                  const std::string& interpolation);
