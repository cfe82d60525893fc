/// \file pair_geometry.h
/// Perpendicular baseline and height of ambiguity of a pair of images, as a point of the ground sees both satellites:
/// each at its place when it passes the point at zero Doppler. Frame: Earth-fixed, metres.
/// Source: a point that moves along a unit vector across the master's line of sight, in the master's plane of zero
/// Doppler, keeps its range there. Per metre it gains across . up in height, and the slave's range changes by
/// across . slave_sight: the slave's own motion does not count at zero Doppler. The phase turns once where the slave's
/// range has changed by a wavelength, or by half of it where each satellite hears its own echo.
/// The functions are inlined by force and choose nothing, for loops that are compiled once per vector level. Threads:
/// no shared state.

#pragma once

#include "geometry/vector_arithmetic.h"

struct ORBIT_STATE;

/// Normal of the ellipsoid below a point, upwards, of unit length.
/// @param a_m, b_m  semi-axes, longer by the point's height
[[gnu::always_inline]] inline VECTOR_3D<double> UpAt(const VECTOR_3D<double>& point_m, double a_m, double b_m) {
    const double ratio = b_m / a_m;
    return Unit(VECTOR_3D<double>{ratio * ratio * point_m.x, ratio * ratio * point_m.y, point_m.z});
}

/// @param across  unit vector across the master's line of sight, upwards
/// @return positive: the slave is above the line
[[gnu::always_inline]] inline double PerpendicularBaseline_m(const VECTOR_3D<double>& master_m,
                                                             const VECTOR_3D<double>& slave_m,
                                                             const VECTOR_3D<double>& across) {
    return DotProduct(slave_m - master_m, across);
}

/// @param turn_m       change of the slave's range that turns the phase once
/// @param up           unit vector
/// @param slave_sight  unit vector between point and slave; of any other length when turn_m is longer by it
/// @return not negative; above kEndlessHeight_m where the slave's range does not change but for rounding
[[gnu::always_inline]] inline double HeightOfAmbiguity_m(double turn_m, const VECTOR_3D<double>& across,
                                                         const VECTOR_3D<double>& up,
                                                         const VECTOR_3D<double>& slave_sight) {
    const double range_change = __builtin_fabs(DotProduct(slave_sight, across));
    return turn_m * DotProduct(across, up) / (range_change + 1e-30);
}

/// A height that no terrain has: the height of ambiguity is told as infinite.
inline constexpr double kEndlessHeight_m = 1e9;

struct PAIR_GEOMETRY {
    double perpendicular_baseline_m = 0.0;  ///< positive: the slave is above the master's line of sight
    double height_of_ambiguity_m = 0.0;     ///< not negative; infinite without a baseline
};

/// Both at one point.
/// @param master   when it passes the point
/// @param slave_m  where it passes the point
/// @param up       unit vector, of the direction in which heights count
[[nodiscard]] PAIR_GEOMETRY PairGeometryAt(const VECTOR_3D<double>& point_m, const VECTOR_3D<double>& up,
                                           const ORBIT_STATE& master, const VECTOR_3D<double>& slave_m, double turn_m);
