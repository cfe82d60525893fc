#include "simulation/dem2phase.h"

#include "lib/baselib/logging/logging.h"
#include "simulation/radar_solution.h"
#include "simulation/threads.h"

void DEM2PHASE_Thread(PREPARED_SCENE& scene, const DEM2PHASE_ARG& arg, SIMULATION_PROGRESS& progress) {
    Log().Message(LOGGING_LEVEL::TRACE, "   - thread nr: %u  start: %u  length: %u", arg.thread_number, arg.start,
                  arg.length);
    progress.Begin(arg);
    const CONVERGENCE_REPORT report;
    RADAR_SOLUTION solution(scene, static_cast<int>(arg.thread_number));
    for (std::uint32_t i = 0; i < arg.length; ++i) {
        solution.SimulateRow(static_cast<int>(arg.start + i));
        progress.RowDone(arg);
    }
    solution.Finish();
    scene.Counts(static_cast<int>(arg.thread_number)) = solution.Counts();
    Log().Message(LOGGING_LEVEL::TRACE, "   - end of thread nr: %u", arg.thread_number);
}

namespace {

SOLUTION_COUNTS RunThreads(const SCENE& scene, SIMULATION_PROGRESS& progress, THREADS_LOG log) {
    PREPARED_SCENE prepared(scene);
    THREADS<DEM2PHASE_ARG, unsigned int> threads(
        static_cast<unsigned int>(scene.simulated.first_row), static_cast<unsigned int>(scene.simulated.last_row),
        [&](DEM2PHASE_ARG* arg) { DEM2PHASE_Thread(prepared, *arg, progress); }, log);
    threads.CutInto(prepared.Blocks());
    if (log == THREADS_LOG::SPOKEN) Log().Message(LOGGING_LEVEL::INFO, " Initialised dem2phase_arg");
    threads.Run();
    prepared.Settle();
    return prepared.TotalCounts();
}

}  // namespace

SOLUTION_COUNTS SimulateScenes(const std::vector<SCENE>& slabs, const std::function<void(std::size_t)>& complete) {
    SIMULATION_PROGRESS progress(slabs);
    SOLUTION_COUNTS total;
    for (std::size_t i = 0; i < slabs.size(); ++i) {
        total += RunThreads(slabs[i], progress, i == 0 ? THREADS_LOG::SPOKEN : THREADS_LOG::SILENT);
        complete(i);
    }
    Log().Message(LOGGING_LEVEL::DEBUG, " - Solutions of DEM samples: %lld in rows (%s), %lld one by one",
                  total.in_rows, TextOf(ChosenVectorLevel()), total.one_by_one);
    return total;
}

SOLUTION_COUNTS SimulateScene(const SCENE& scene) {
    return SimulateScenes({scene}, [](std::size_t) {});
}
