/// \file dem_datum.h
/// The DEM's ellipsoid and datum from its pool.

#pragma once

#include "geometry/geodetic.h"
#include "lib/baselib/pool/parameter_pool.h"

/// Optional keys: ellipsoid_type, datum_shift, datum_rotation (its presence selects the seven-parameter form),
/// datum_scale.
/// @throws the enumeration error for an unknown ellipsoid; ERROR_PARAMETER for the ellipsoid "-", a list of another
///         length, a rotation that is not orthonormal to 1e-6, a scale that is no factor near 1
GEODETIC_PARAMETERS ReadGeodeticParameters(PARAMETER_POOL& dem_pool);
