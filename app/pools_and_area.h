/// \file pools_and_area.h
/// The second half of stage A: acquisition parameters, DEM, simulation area, output sizes, result images.

#pragma once

#include "app/simulation_state.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

/// Every check of this stage stops the run before any simulation work is done and before anything is allocated.
/// @throws the pool and image errors, ERROR_ARGUMENT, ERROR_PARAMETER, ERROR_DATA, ERROR_ALGORITHM
void ReadPoolsAndArea(SIMULATION_STATE& state, PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool,
                      PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);
