/// \file image_to_dem.h
/// From a radar time pair of the master image to the place in the DEM, for a given terrain height.

#pragma once

#include "app/simulation_state.h"
#include "geometry/geolocation_fast.h"

/// Terrain heights (metres above the ellipsoid) between which the Earth's surface lies: for one slant range the lowest
/// terrain is nearest to the satellite's track on the ground, the highest farthest.
inline constexpr double kLowestTerrain_m = -1000.0;
inline constexpr double kHighestTerrain_m = 9000.0;

struct DEM_POSITION {
    double longitude_deg = 0.0;
    double latitude_deg = 0.0;
    VECTOR_3D<double> point_m{};  ///< frame of the orbits
    POINT<double> grid{};         ///< fractional column (x) and row (y) of the DEM
};

class IMAGE_TO_DEM {
  public:
    /// Keeps a reference to the state: orbits, radii, look direction and DEM grid must be set.
    explicit IMAGE_TO_DEM(const SIMULATION_STATE& state) : state_(state) {}

    /// @param azimuth_time_s  seconds on the master orbit's axis
    /// @param range_time_s    two-way
    /// @throws ERROR_DATA when the range does not reach the ground
    DEM_POSITION operator()(double azimuth_time_s, double range_time_s, double height_m) const;

  private:
    const SIMULATION_STATE& state_;
};
