/// \file ground_view.h
/// What the ground of one line's pixels sees of both satellites, many pixels at a time; compiled once per vector level.
/// A pixel's ground is found from its range and its height: in the plane of zero Doppler, where the satellite is at
/// rest, at the angle from the downward direction at which the height above the DEM's ellipsoid is the pixel's. Frame:
/// Earth-fixed, that of the orbits, metres and seconds, but for what is called own: there the DEM's ellipsoid has its
/// centre and axes (see DATUM). Threads: no shared state. Accuracy: ground to 1e-3 m; angles to 3e-6 degrees; the
/// slave's place to 2e-2 m along its track, 1e-3 m across, where its zero-Doppler time differs by at most 1 s within
/// the line.

#pragma once

#include "lib/baselib/containers/records.h"
#include "lib/baselib/vectors/vector_level.h"

/// Quantities of a pixel's ground. The line of sight goes from the ground to the master.
enum class VIEW {
    INCIDENCE_DEG,             ///< between the line of sight and the normal of the orbits' ellipsoid
    LOCAL_INCIDENCE_DEG,       ///< between the line of sight and the normal of the terrain's triangle
    PERPENDICULAR_BASELINE_M,  ///< slave less master across the line of sight; positive above the line
    HEIGHT_OF_AMBIGUITY_M,     ///< not negative; huge where the slave's range hardly depends on the height
    LINE_OF_SIGHT_EAST,
    LINE_OF_SIGHT_NORTH,
    LINE_OF_SIGHT_UP,
};
inline constexpr int kViews = 7;

/// What the pixels of one line share.
struct GROUND_FRAME {
    double a_m;  ///< semi-axes of the DEM's ellipsoid
    double b_m;
    VECTOR_3D<double> own_satellite_m;
    VECTOR_3D<double> own_down;  ///< per metre of range
    VECTOR_3D<double> own_out;
    double normal_a_m;  ///< semi-axes of the orbits' ellipsoid
    double normal_b_m;
    VECTOR_3D<double> satellite_m;
    VECTOR_3D<double> down;  ///< unit vectors that span the plane of zero Doppler: towards the Earth's centre,
    VECTOR_3D<double> out;   ///< and to the side on which the antenna looks
    double first_range_m;
    double range_step_m;
    VECTOR_3D<double> slave_m;  ///< its motion about when it passes the middle of the line
    VECTOR_3D<double> slave_m_s;
    VECTOR_3D<double> slave_m_s2;
    double ambiguity_m;  ///< change of the slave's range that turns the phase once
};

/// Pixels in step. Their arrays stay in the first cache.
struct GROUND_BLOCK {
    static constexpr int kSize = 64;
    float height_m[kSize];   ///< above the DEM's ellipsoid; to be filled, also behind the last pixel
    double radius_m;         ///< of the DEM's ellipsoid about where the pixels are, to 100 m; to be filled
    float normal[3][kSize];  ///< of the terrain's triangle, outwards, of any length; to be filled, too
    double down[kSize];      ///< the way from the satellite to the ground, per metre of range
    double out[kSize];
    float views[kViews][kSize];
};

/// Finds the ground of kSize pixels, from column first_column on. Part of ViewGround.
/// @param first_column  of the frame's ranges
VELMORA_AT_EVERY_LEVEL(void ViewGround(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block))
