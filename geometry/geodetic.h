/// \file geodetic.h
/// Geographic and Earth-fixed Cartesian coordinates on a reference ellipsoid, and the datum transformation into the
/// frame of the orbits.
/// Units: radians and metres. Frame: Earth-fixed, z towards the north pole, x towards longitude 0.
/// Threads: pure functions of their arguments.

#pragma once

#include "lib/baselib/containers/records.h"

/// From an ellipsoid's own Earth-fixed frame into the frame of the orbits.
/// With shift_only the scale and the rotation are ignored, whatever they hold.
struct DATUM {
    bool shift_only = true;
    VECTOR_3D<double> shift_m{};
    double scale = 1.0;
    double rotation[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};  ///< row by row
};

/// The ellipsoid and the datum of one DEM.
struct GEODETIC_PARAMETERS {
    double a_m = 0.0;  ///< semi-major axis
    double e2 = 0.0;   ///< squared first eccentricity
    DATUM datum{};
};

struct GEOGRAPHIC {
    double longitude_rad = 0.0;
    double latitude_rad = 0.0;  ///< geodetic
    double height_m = 0.0;      ///< above the ellipsoid
};

/// (a^2 - b^2) / a^2 for the semi-axes a, b; a must not be 0.
[[nodiscard]] double SquaredEccentricity(double a_m, double b_m);

/// Closed form, exact to rounding.
[[nodiscard]] VECTOR_3D<double> GeographicToCartesian(const GEOGRAPHIC& position, double a_m, double e2);

/// Inverse of GeographicToCartesian: the round trip holds to 1e-8 m for heights between -10 km and 10 000 km.
/// Longitude in -pi..pi (0 on the polar axis), latitude in -pi/2..pi/2. The Earth's centre itself has no latitude: 0.
/// Source: Bowring (1976) in terms of the reduced latitude, repeated until it stands still.
[[nodiscard]] GEOGRAPHIC CartesianToGeographic(const VECTOR_3D<double>& point_m, double a_m, double e2);

/// X' = X + d, or X' = s R X + d: the scale multiplies the rotated vector, the shift comes last.
[[nodiscard]] VECTOR_3D<double> DatumForward(const DATUM& datum, const VECTOR_3D<double>& point_m);

/// Exact inverse of DatumForward, also for a matrix of small angles that is orthonormal to first order only.
/// The matrix must be regular and the scale not 0: check with IsRotation where the datum is read.
[[nodiscard]] VECTOR_3D<double> DatumInverse(const DATUM& datum, const VECTOR_3D<double>& point_m);

/// Whether R R^T differs from the unit matrix by at most the tolerance in every element, and det R is positive.
[[nodiscard]] bool IsRotation(const double (&rotation)[3][3], double tolerance);
