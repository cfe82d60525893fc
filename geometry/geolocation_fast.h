/// \file geolocation_fast.h
/// From a radar sample to the ground: satellite state, two-way range time and height above the ellipsoid give the
/// point. Frame: Earth-fixed, metres, metres per second, seconds; angles of the result in degrees.
/// Threads: reentrant.

#pragma once

#include "lib/baselib/containers/records.h"

struct GEOLOCATION {
    VECTOR_3D<double> point_m;
    double longitude_deg;  ///< 0 <= longitude < 360
    double latitude_deg;   ///< geodetic, of the ellipsoid enlarged by the height
    double radius_m;       ///< |point|
    double incidence_deg;  ///< between the line of sight and the ellipsoid's normal
};

/// The point at slant range c fast_time / 2 on the ellipsoid enlarged by the height, on the side the radar looks to.
/// @param look_direction               +1.0 right, -1.0 left
/// @param height_m                     above the ellipsoid
/// @param rpole_m, requator_m          semi-axes b and a
/// @param fast_time_s                  two-way range time
/// @param line_of_sight_velocity_m_s   0.0 for zero Doppler
/// Accuracy: iterates until radius (m), range (m) and Doppler (m/s) stand to 1e-9, at most 21 steps.
/// Errors: logged at ALARM, then ERROR_DATA: satellite inside the Earth, on the polar axis or without motion across the
///         vertical, range that does not reach the ellipsoid, no convergence.
[[nodiscard]] GEOLOCATION geolocation_fast(const VECTOR_3D<double>& position_m, const VECTOR_3D<double>& velocity_m_s,
                                           double look_direction, double height_m, double rpole_m, double requator_m,
                                           double fast_time_s, double line_of_sight_velocity_m_s);
