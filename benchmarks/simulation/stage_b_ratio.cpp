/// \file stage_b_ratio.cpp
/// Stage B of a real job, by the program's kernel and by the plain one, in one process:
///   cd <folder of a scene>; PARALLEL=1 stage_b_ratio -pcf scene.pcf
/// The first run of the program's kernel meets fresh memory, as in the program; the plain one and four further runs
/// meet memory that is there. Nothing is written but the log and the status files.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include "app/keys/configuration_keys.h"
#include "app/phase_simulation.h"
#include "app/pools_and_area.h"
#include "app/request/run_configuration.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/logging/logging.h"
#include "tests/plain_kernel/plain_kernel.h"

namespace {

template <class WORK>
double SecondsOf(WORK work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ClearMask(const MASTER_GRIDS& image) {
    const auto columns = static_cast<std::size_t>(image.mask.columns);
    for (int row = 0; row < image.mask.rows; ++row) std::memset(image.mask[row], 0, columns);
}

}  // namespace

int main(int argc, char** argv) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    CONTROLLER_IFC controller;
    controller.SetKnownKeys(ConfigurationKeyNames());
    controller.init(argc, argv, false);
    SIMULATION_STATE state;
    PARAMETER_POOL master_pool, slave_pool;
    PARAMETER_POOL_READ_WRITE_CHANGE insar_pool;
    LOG_POOL log_pool;
    ReadConfiguration(state, controller, master_pool, slave_pool, insar_pool, log_pool);
    ReadPoolsAndArea(state, master_pool, slave_pool, insar_pool);

    const double fresh_s = SecondsOf([&] { SimulatePhase(state); });
    ClearMask(state.scene.image);
    const DEM_RANGE& rows = state.scene.simulated;
    const double plain_s = SecondsOf([&] { PlainSimulateRows(state.scene, rows.first_row, rows.last_row); });
    double best_s = fresh_s;
    for (int i = 0; i < 4; ++i) {
        ClearMask(state.scene.image);
        best_s = std::min(best_s, SecondsOf([&] { SimulatePhase(state); }));
    }
    std::printf("stage B: fresh memory %.3f s, best of 5 %.3f s; plain kernel, one thread, %.3f s: ratio %.1f, %.1f\n",
                fresh_s, best_s, plain_s, plain_s / fresh_s, plain_s / best_s);
    controller.exit_success();
}
