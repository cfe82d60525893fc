/// \file subsampling_factors.h
/// Where the sub-sampling factors come from: forced by an upper-case key of the configuration and then written into the
/// InSAR pool, or read from there.

#pragma once

#include "app/simulation_state.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

/// Shift factors; skipped when neither shift maps nor geocoding factors are asked for.
void ReadShiftSubsampling(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller,
                          PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);

/// Factors of the Earth coordinate and height files.
void ReadEarthSubsampling(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller,
                          PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);

/// Factors of the later geocoding grid: they stand in the InSAR pool only.
void ReadGeocodingSubsampling(RUN_CONFIGURATION& configuration, PARAMETER_POOL& insar_pool);
