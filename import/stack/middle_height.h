/// \file middle_height.h
/// The height at which a stack's pairs are measured.

#pragma once

#include <string>

/// The middle of the DEM's valid heights, where its pool tells them; else the ellipsoid.
/// @throws COMPANION_ERROR for a range of another form; the pool's errors
[[nodiscard]] double MiddleHeight_m(const std::string& dem_pool);
