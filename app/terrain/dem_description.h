/// \file dem_description.h
/// Stage A: the DEM pool and the DEM image become the grid that the kernel walks.

#pragma once

#include "app/simulation_state.h"
#include "lib/baselib/pool/parameter_pool.h"

/// Reads the grid, the ellipsoid and the datum from the DEM pool, maps the DEM image read-only and fills state.dem and
/// state.scene.dem.
/// @throws the pool and image errors; std::out_of_range for an empty grid format; ERROR_PARAMETER for edges that
/// enclose
///         nothing, a rotation that is none or a zone outside 1..60; the enumeration error for an unknown ellipsoid
void ReadDemDescription(SIMULATION_STATE& state, PARAMETER_POOL& dem_pool);
