#include "simulation/dem2phase.h"

#include "lib/baselib/logging/logging.h"
#include "simulation/radar_solution.h"
#include "simulation/thread_count.h"
#include "simulation/threads.h"

namespace {

/// One thread, about the middle one, tells the user how far it is: at every tenth of its rows.
class PROGRESS {
  public:
    explicit PROGRESS(const DEM2PHASE_ARG& arg)
        : reporting_(static_cast<int>(arg.thread_number) == ThreadCount() / 2),
          length_(arg.length),
          step_(length_ > 9 ? length_ / 10 : 1) {
        if (reporting_) Log().Message(LOGGING_LEVEL::TRACE, "ten percent are %lld lines", step_);
    }

    void RowDone(long long rows_before) const {
        if (!reporting_ || rows_before == 0 || rows_before % step_ != 0) return;
        Log().Message(LOGGING_LEVEL::INFO, "    * processed %lld %%", rows_before * 100 / length_);
    }

  private:
    bool reporting_;
    long long length_;
    long long step_;
};

}  // namespace

void DEM2PHASE_Thread(PREPARED_SCENE& scene, const DEM2PHASE_ARG& arg, PROGRESS_LINE& line) {
    Log().Message(LOGGING_LEVEL::TRACE, "   - thread nr: %u  start: %u  length: %u", arg.thread_number, arg.start,
                  arg.length);
    const PROGRESS progress(arg);
    const CONVERGENCE_REPORT report;
    RADAR_SOLUTION solution(scene, static_cast<int>(arg.thread_number));
    for (std::uint32_t i = 0; i < arg.length; ++i) {
        solution.SimulateRow(static_cast<int>(arg.start + i));
        progress.RowDone(i);
        line.Done();
    }
    solution.Finish();
    scene.Counts(static_cast<int>(arg.thread_number)) = solution.Counts();
    Log().Message(LOGGING_LEVEL::TRACE, "   - end of thread nr: %u", arg.thread_number);
}

SOLUTION_COUNTS SimulateScene(const SCENE& scene) {
    PREPARED_SCENE prepared(scene);
    PROGRESS_LINE line(scene.simulated.last_row - scene.simulated.first_row);
    THREADS<DEM2PHASE_ARG, unsigned int> threads(static_cast<unsigned int>(scene.simulated.first_row),
                                                 static_cast<unsigned int>(scene.simulated.last_row),
                                                 [&](DEM2PHASE_ARG* arg) { DEM2PHASE_Thread(prepared, *arg, line); });
    Log().Message(LOGGING_LEVEL::INFO, " Initialised dem2phase_arg");
    threads.Run();
    prepared.Settle();
    const SOLUTION_COUNTS counts = prepared.TotalCounts();
    Log().Message(LOGGING_LEVEL::DEBUG, " - Solutions of DEM samples: %lld in rows (%s), %lld one by one",
                  counts.in_rows, TextOf(prepared.VectorLevel()), counts.one_by_one);
    return counts;
}
