/// \file terrain.h
/// The DEM pool and the DEM image become the grid that the kernel walks.

#pragma once

#include "app/request/request.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "simulation/dem_grid.h"

struct TERRAIN {
    MEM_MGR image;  ///< the DEM file, mapped read-only
    DEM_GRID grid;  ///< points into the image
};

/// @throws the pool errors
[[nodiscard]] PARAMETER_POOL OpenDemPool(const REQUEST& request);

/// Reads the grid, the ellipsoid and the datum from the DEM pool and maps the DEM image.
/// @throws the pool and image errors; std::out_of_range for an empty grid format; ERROR_PARAMETER for edges that
///         enclose nothing, a rotation that is none or a zone outside 1..60; the enumeration error for an unknown
///         ellipsoid
[[nodiscard]] TERRAIN ReadTerrain(const REQUEST& request, PARAMETER_POOL& dem_pool);
