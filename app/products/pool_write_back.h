/// \file pool_write_back.h
/// The only place of a run where pools change: after all stages, log pool first, InSAR pool second.

#pragma once

#include "app/request/run_configuration.h"

/// Writes the pending changes of both pools into their files, once when they are the same object.
/// @throws the pool's errors; each file then is as it was before the run, a log pool that was already written included
void WriteBackPools(LOG_POOL& log_pool, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);
