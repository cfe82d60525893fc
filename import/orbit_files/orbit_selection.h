/// \file orbit_selection.h
/// The vectors that an image needs: its own interval and a margin on both sides.

#pragma once

#include <vector>

#include "import/orbit_files/orbit_table.h"

struct UTC_INTERVAL {
    UNIVERSAL_TIME from;
    UNIVERSAL_TIME to;
};

/// Interpolations need vectors on both sides of every instant (four at most, see docs/orbits.md), and the terrain of
/// the image's first and last line is seen slightly outside the image: a minute, or four vectors where that is more.
[[nodiscard]] double OrbitMargin_s(const ORBIT_TABLE& table);

/// The vectors within the interval extended by the margin, and the next one on either side where there is one.
/// @throws COMPANION_ERROR with the interval wanted and the one offered
[[nodiscard]] std::vector<UTC_STATE_VECTOR> SelectVectors(const ORBIT_TABLE& table, const UTC_INTERVAL& image);
