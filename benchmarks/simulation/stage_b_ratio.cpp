/// \file stage_b_ratio.cpp
/// Stage B of a real job at every vector level of the machine and by the plain kernel, in one process:
///   cd <folder of a scene>; PARALLEL=1 stage_b_ratio -pcf scene.pcf
/// The first run meets fresh memory, as in the program; the others meet memory that is there. Rounds go from level to
/// level, so that a noise of the machine meets all of them. Nothing is written but the log and the status files.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <vector>

#include "app/keys/control_key.h"
#include "app/simulation_state.h"
#include "benchmarks/plain_kernel/plain_kernel.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/vectors/vector_level.h"
#include "simulation/dem2phase.h"

namespace {

/// Wall clock and processor time of all threads, system included.
struct COST {
    double wall_s = 1e9;
    double processor_s = 1e9;
};

double ProcessorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <class WORK>
COST CostOf(WORK work) {
    const auto start = std::chrono::steady_clock::now();
    const double start_s = ProcessorSeconds();
    work();
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            ProcessorSeconds() - start_s};
}

COST Better(const COST& a, const COST& b) {
    return {std::min(a.wall_s, b.wall_s), std::min(a.processor_s, b.processor_s)};
}

void ClearMask(const MASTER_GRIDS& image) {
    const auto columns = static_cast<std::size_t>(image.mask.columns);
    for (int row = 0; row < image.mask.rows; ++row) std::memset(image.mask[row], 0, columns);
}

}  // namespace

int main(int argc, char** argv) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    CONTROLLER_IFC controller;
    controller.SetKnownKeys(ControlKeyNames());
    controller.init(argc, argv, false);
    RUN_POOLS pools;
    REQUEST request = ReadRequest(controller, pools);
    request.only_looks = true;  // no products, and the grids of the whole image
    const SIMULATION_STATE state(request, pools);

    const COST fresh = CostOf([&] { SimulateScene(state.scene); });
    std::map<VECTOR_LEVEL, COST> best;
    constexpr int kRounds = 5;
    for (int round = 0; round < kRounds; ++round) {
        for (const VECTOR_LEVEL level : {VECTOR_LEVEL::AVX512, VECTOR_LEVEL::AVX2, VECTOR_LEVEL::PLAIN}) {
            if (!MachineHas(level)) continue;
            setenv("VELMORA_VECTORS", TextOf(level), 1);
            ClearMask(state.scene.image);
            best[level] = Better(best[level], CostOf([&] { SimulateScene(state.scene); }));
        }
    }
    const COST& program = best.rbegin()->second;
    for (const auto& [level, cost] : best) {
        std::printf("stage B, %-6s: best of %d %.3f s, processor %.3f s: %.2f times the best level's\n", TextOf(level),
                    kRounds, cost.wall_s, cost.processor_s, cost.processor_s / program.processor_s);
    }
    ClearMask(state.scene.image);
    const DEM_RANGE& rows = state.scene.simulated;
    const COST plain = CostOf([&] { PlainSimulateRows(state.scene, rows.first_row, rows.last_row); });
    std::printf("plain kernel, one thread: %.3f s, %.1f times stage B's, %.1f times that in fresh memory (%.3f s)\n",
                plain.wall_s, plain.wall_s / program.wall_s, plain.wall_s / fresh.wall_s, fresh.wall_s);
    controller.exit_success();
}
