/// \file dem_datum.h
/// The DEM's ellipsoid and datum from its pool.

#pragma once

#include "geometry/geodetic.h"
#include "lib/baselib/pool/parameter_pool.h"

/// Optional keys: ellipsoid_type (STR, default "WGS84"), datum_shift (FLT_15_V: dx dy dz), datum_rotation (FLT_15_V:
/// nine values, row by row; its presence selects the seven-parameter form), datum_scale (FLT_15, default 1).
/// @throws the enumeration error for an unknown ellipsoid; ERROR_PARAMETER for the ellipsoid "-", a list of another
/// length,
///         a rotation that is not orthonormal to 1e-6, a scale that is not above 0
GEODETIC_PARAMETERS ReadGeodeticParameters(PARAMETER_POOL& dem_pool);
