#include "simulation/simulation_progress.h"

#include <algorithm>

#include "lib/baselib/logging/logging.h"
#include "simulation/scene_blocks.h"
#include "simulation/thread_count.h"

namespace {

long long RowsOf(const SCENE& slab) {
    return std::max(slab.simulated.last_row - slab.simulated.first_row, 0);
}

long long RowsOfAll(const std::vector<SCENE>& slabs) {
    long long rows = 0;
    for (const SCENE& slab : slabs) rows += RowsOf(slab);
    return rows;
}

long long RowsOfBlock(const std::vector<SCENE>& slabs, int block) {
    long long rows = 0;
    for (const SCENE& slab : slabs) {
        const std::vector<ROW_BLOCK> blocks = BlocksOf(slab, ThreadCount());
        if (block < static_cast<int>(blocks.size())) rows += blocks[static_cast<std::size_t>(block)].length;
    }
    return rows;
}

}  // namespace

SIMULATION_PROGRESS::SIMULATION_PROGRESS(const std::vector<SCENE>& slabs)
    : reporting_block_(static_cast<unsigned>(ThreadCount() / 2)),
      rows_(RowsOfBlock(slabs, ThreadCount() / 2)),
      step_(rows_ > 9 ? rows_ / 10 : 1),
      line_(RowsOfAll(slabs)) {}

void SIMULATION_PROGRESS::Begin(const THREAD_ARG& block) {
    if (block.thread_number == reporting_block_ && rows_done_ == 0)
        Log().Message(LOGGING_LEVEL::TRACE, "ten percent are %lld lines", step_);
}

void SIMULATION_PROGRESS::RowDone(const THREAD_ARG& block) {
    line_.Done();
    if (block.thread_number != reporting_block_) return;
    const long long before = rows_done_++;
    if (before == 0 || before % step_ != 0) return;
    Log().Message(LOGGING_LEVEL::INFO, "    * processed %lld %%", before * 100 / rows_);
}
