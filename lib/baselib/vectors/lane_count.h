/// \file lane_count.h

#pragma once

/// Neighbouring elements that the vector code takes at once, at every level.
inline constexpr int kLanes = 8;
