/// \file subsampling_factors.h
/// Where the sub-sampling factors come from: forced by an upper-case key of the configuration and then written into the
/// InSAR pool, or read from there. A factor of 0, also of a text that is no number, counts as 1.

#pragma once

#include "app/keys/control_values.h"
#include "app/request/area_extension.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

/// Shift factors; 1 when neither shift maps nor geocoding factors are asked for.
/// @throws here and below the pool's errors; ERROR_PARAMETER for a factor below 0 or beyond 32 bits
[[nodiscard]] SUBSAMPLING ReadShiftSubsampling(bool shifts_asked, CONTROLLER_IFC& controller,
                                               PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);

/// Factors of the Earth coordinate and height files.
[[nodiscard]] SUBSAMPLING ReadEarthSubsampling(CONTROLLER_IFC& controller,
                                               PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);

/// Factors of the later geocoding grid: they stand in the InSAR pool only.
[[nodiscard]] SUBSAMPLING ReadGeocodingSubsampling(PARAMETER_POOL& insar_pool);
