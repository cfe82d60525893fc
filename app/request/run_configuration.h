/// \file run_configuration.h
/// The first half of stage A: which files to read and write, which products are wanted, and their sub-sampling.

#pragma once

#include <memory>

#include "app/simulation_state.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

/// The pool that receives the software history: the InSAR pool itself, or one of its own when another file is named.
struct LOG_POOL {
    std::unique_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> own;
    PARAMETER_POOL_READ_WRITE_CHANGE* pool = nullptr;
};

/// Looks every key up, opens the pools and logs the summary. An upper-case key that also lives in the InSAR pool forces
/// the value and is written into that pool.
/// @throws the pool errors for a pool that cannot be opened or a key that must be read and is missing;
///         std::out_of_range for an empty observation mode; ERROR_PARAMETER for a factor below 0 or beyond 32 bits
void ReadConfiguration(SIMULATION_STATE& state, CONTROLLER_IFC& controller, PARAMETER_POOL& master_pool,
                       PARAMETER_POOL& slave_pool, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool, LOG_POOL& log_pool);
