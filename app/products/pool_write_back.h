/// \file pool_write_back.h
/// The only place of a run where pools change: after all stages, both pools together or none.

#pragma once

#include "app/products/software_history.h"
#include "app/run_pools.h"
#include "lib/baselib/pool/signals_held_back.h"

/// Enters the run into the software history and writes the pending changes of both pools into their files. The history
/// is read under the pools' lock: what another run entered meanwhile stays.
/// @param held_back  after a success fatal signals stay held back: the run's work is done
/// @throws the pool's errors; the pools then are as they were before the run, or the log says how to recover
void WriteBackPools(RUN_POOLS& pools, const HISTORY_ENTRY& entry, SIGNALS_HELD_BACK& held_back);

/// What WriteBackPools will do to the history, tried on the pool as it is now: lists that are missing, of another type
/// or length, values that a pool can not hold. @throws the pool's errors
void TryHistory(PARAMETER_POOL_READ_WRITE_CHANGE& log_pool, const HISTORY_ENTRY& entry);
