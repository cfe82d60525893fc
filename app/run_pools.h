/// \file run_pools.h
/// The parameter pools of one run. They change in one place only, after all stages: WriteBackPools.

#pragma once

#include <memory>

#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

struct RUN_POOLS {
    bool only_looks = false;  ///< a log pool that is not there is not created
    PARAMETER_POOL master{};
    PARAMETER_POOL slave{};
    PARAMETER_POOL_READ_WRITE_CHANGE insar{};
    std::unique_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> own_log{};  ///< none: the InSAR pool is the log pool

    /// The pool that receives the software history.
    [[nodiscard]] PARAMETER_POOL_READ_WRITE_CHANGE& HistoryPool() { return own_log ? *own_log : insar; }
};
