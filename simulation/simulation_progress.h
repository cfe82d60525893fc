/// \file simulation_progress.h
/// How far the phase simulation is: lines of the log, and a line that is overwritten for a person at a terminal. An
/// image in slabs counts as one piece of work. Threads: RowDone() from all; the lines of the log come from one of them,
/// about the middle one.

#pragma once

#include <vector>

#include "lib/baselib/logging/progress_line.h"
#include "simulation/scene.h"
#include "simulation/thread_arg.h"

class SIMULATION_PROGRESS {
  public:
    explicit SIMULATION_PROGRESS(const std::vector<SCENE>& slabs);

    /// A block of rows begins.
    void Begin(const THREAD_ARG& block);
    /// One of its rows is done: at every tenth of the middle blocks' rows the log tells how many there were before it.
    void RowDone(const THREAD_ARG& block);

  private:
    const unsigned reporting_block_;
    long long rows_;  ///< of the reporting blocks of all slabs
    long long step_;
    long long rows_done_ = 0;
    PROGRESS_LINE line_;  ///< counts the rows of all blocks
};
