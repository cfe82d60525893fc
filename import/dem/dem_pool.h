/// \file dem_pool.h
/// The pool that describes an imported DEM.

#pragma once

#include <string>

#include "import/dem/reference_system.h"
#include "import/dem/sample_grid.h"

/// Edges as the processor takes them: column c at left + c (right - left) / columns, row r at upper - r (upper - lower)
/// / rows. Longitudes -180..180; the right edge is below the left one when the DEM crosses the 180 degree meridian.
struct DEM_EDGES_OF_POOL {
    double upper = 0.0;
    double lower = 0.0;
    double left = 0.0;
    double right = 0.0;
};

[[nodiscard]] DEM_EDGES_OF_POOL EdgesOf(const SAMPLE_GRID& grid, const MAP_REFERENCE& map);

struct DEM_HEIGHTS_OF_POOL {
    bool as_float = false;
    std::string valid;    ///< value of DEM_VALID that fits: "281..2262"; the key dem_valid tells it to `pair`
    std::string comment;  ///< to what the heights refer
};

/// @param path  an empty file. @throws the pool errors
void WriteDemPool(const std::string& path, const SAMPLE_GRID& grid, const MAP_REFERENCE& map,
                  const DEM_HEIGHTS_OF_POOL& heights);
