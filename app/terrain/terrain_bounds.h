/// \file terrain_bounds.h
/// Heights between which the Earth's surface lies.

#pragma once

/// Metres above the ellipsoid. For one slant range the lowest terrain is nearest to the satellite's track on the
/// ground, the highest farthest: whatever the terrain is, a pixel lies between the two places.
inline constexpr double kLowestTerrain_m = -1000.0;
inline constexpr double kHighestTerrain_m = 9000.0;
