/// \file pool_sweep.h
/// Every key that a pool must hold, each by itself: the run would stop at the first that is missing or out of range.

#pragma once

#include "app/check/problem_list.h"
#include "app/keys/pool_key.h"
#include "lib/baselib/pool/parameter_pool.h"

/// What decides which of the keys a run reads.
struct RUN_KIND {
    bool permanent_scatterer = false;
    bool single_pass = false;
};

/// @param home  which pool it is
void SweepPool(PARAMETER_POOL& pool, POOL_HOME home, const RUN_KIND& kind, PROBLEM_LIST& problems);
