/// \file dem_row.h
/// Earth-fixed positions of the DEM samples of a row, many at a time: as Get_Earth_Position_From_DEM, with what a row
/// or a column has in common computed once. Accuracy: a few roundings (below 1e-8 m) from Get_Earth_Position_From_DEM.
/// Threads: constant after construction.

#pragma once

#include <vector>

#include "lib/baselib/vectors/vector_level.h"
#include "simulation/radar_row.h"
#include "simulation/scene.h"

class DEM_ROW {
  public:
    /// @param dem  must outlive the object
    DEM_ROW(const DEM_GRID& dem, const DEM_RANGE& simulated, VECTOR_LEVEL level);

    /// Fills EARTH_X, EARTH_Y, EARTH_Z and HEIGHT_M of the whole row, unless they are filled; row.row tells the DEM
    /// row. Errors: as Get_Earth_Position_From_DEM.
    void FillPositions(RADAR_ROW& row) const;

  private:
    void FillGeo(RADAR_ROW& row) const;
    [[nodiscard]] bool FillUtm(RADAR_ROW& row) const;
    void FillOneByOne(RADAR_ROW& row) const;
    void CarryIntoOrbitFrame(RADAR_ROW& row) const;

    const DEM_GRID& dem_;
    VECTOR_LEVEL level_;
    GRID_KIND kind_;
    std::vector<double> cos_longitude_{};  ///< of a "GEO" grid, one per simulated column
    std::vector<double> sin_longitude_{};
};
