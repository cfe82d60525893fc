/// \file pair_orbits.h
/// The orbits of a pair: how to interpolate between their state vectors, and whether they see the same ground.

#pragma once

#include <optional>
#include <string>

#include "import/orbit_files/interpolation_choice.h"
#include "import/pair/image_cut.h"
#include "import/pools/acquisition.h"

/// By the spacing of the vectors in the pool. Nothing for an orbit that stands in a record database.
/// @throws COMPANION_ERROR for lists of less than two times; the pool and time errors
[[nodiscard]] std::optional<INTERPOLATION_CHOICE> InterpolationForPool(const std::string& pool_path);

/// The part of the master's image that is wanted.
struct IMAGE_PART {
    HALF_OPEN_RANGE lines;
    HALF_OPEN_RANGE samples;
};

/// Where the slave sees the ground of the part: its own lines, counted from 0 as the master's.
struct SLAVE_LINES {
    double first = 0.0;
    double last = 0.0;
};

/// @param side  +1 right, -1 left
/// @throws COMPANION_ERROR when the state vectors of either orbit do not cover the part
[[nodiscard]] SLAVE_LINES LinesSeenBySlave(const ACQUISITION_OF_POOL& master, const ACQUISITION_OF_POOL& slave,
                                           double side, const IMAGE_PART& part);
