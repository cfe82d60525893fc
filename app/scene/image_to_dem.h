/// \file image_to_dem.h
/// From a radar time pair of the master image to the place in the DEM, for a given terrain height.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "geometry/geolocation_fast.h"
#include "simulation/dem_grid.h"

struct DEM_POSITION {
    double longitude_deg = 0.0;
    double latitude_deg = 0.0;
    VECTOR_3D<double> point_m{};  ///< frame of the orbits
    POINT<double> grid{};         ///< fractional column (x) and row (y) of the DEM
};

class IMAGE_TO_DEM {
  public:
    /// Keeps references to both.
    IMAGE_TO_DEM(const ACQUISITIONS& acquisitions, const DEM_GRID& dem)
        : acquisitions_(acquisitions), dem_(dem), look_sign_(acquisitions.look_sign) {}

    /// The same with the antenna looking to the other side.
    [[nodiscard]] IMAGE_TO_DEM Mirrored() const {
        IMAGE_TO_DEM mirrored = *this;
        mirrored.look_sign_ = -look_sign_;
        return mirrored;
    }

    /// @param azimuth_time_s  seconds on the master orbit's axis
    /// @param range_time_s    two-way
    /// @throws ERROR_DATA when the range does not reach the ground
    DEM_POSITION operator()(double azimuth_time_s, double range_time_s, double height_m) const;

  private:
    const ACQUISITIONS& acquisitions_;
    const DEM_GRID& dem_;
    double look_sign_;
};
