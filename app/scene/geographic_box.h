/// \file geographic_box.h
/// Boxes of longitude and latitude around scenes and DEMs, for messages.

#pragma once

#include <algorithm>
#include <string>

#include "app/scene/simulation_area.h"

/// Smallest and largest values.
class SPAN {
  public:
    void Add(double value) {
        least = empty_ ? value : std::min(least, value);
        most = empty_ ? value : std::max(most, value);
        empty_ = false;
    }

    double least = 0.0;
    double most = 0.0;

  private:
    bool empty_ = true;
};

struct GEOGRAPHIC_BOX {
    SPAN longitude_deg;
    SPAN latitude_deg;
};

/// On the master's ellipsoid. A scene across Greenwich or 180 degrees has a narrow box, too.
[[nodiscard]] GEOGRAPHIC_BOX BoxAround(const SCENE_CORNERS& corners);

/// Around the outermost samples' centres, on the DEM's own ellipsoid and datum.
[[nodiscard]] GEOGRAPHIC_BOX BoxAround(const DEM_GRID& dem);

/// Adds a place on the DEM's own ellipsoid and datum, in the turn of longitudes in which the DEM is written.
/// @param dem_box  BoxAround the same DEM
void AddInDem(GEOGRAPHIC_BOX& box, const VECTOR_3D<double>& point_m, const DEM_GRID& dem,
              const GEOGRAPHIC_BOX& dem_box);

/// "longitude 7.1 .. 7.5, latitude ... degrees", to 1e-4 degrees, which are 11 m.
[[nodiscard]] std::string InDegrees(const GEOGRAPHIC_BOX& box);
