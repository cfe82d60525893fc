#include "simulation/dem2phase.h"

#include "lib/baselib/logging/logging.h"
#include "simulation/radar_solution.h"
#include "simulation/scene.h"
#include "simulation/thread_count.h"

namespace {

/// Cells whose first corner lies farther outside the image, in samples or lines, are dropped.
constexpr double kExtentMargin = 1000.0;

struct CORNER {
    int slot;
    int column_step;
    int row_step;
};
constexpr CORNER kCorners[] = {{0, 0, 0}, {1, 1, 0}, {3, 1, 1}, {2, 0, 1}};

bool IsInsideArea(const SIMULATION_AREA& area, int column, int row) {
    const POINT<double> p = {static_cast<double>(column), static_cast<double>(row)};
    const auto inside = [&p](const TRIANGLE& t) {
        const double size = TriangleArea(t.a, t.b, t.c);
        return size > 0.0 && IsInsideTriangle(p, t, size);
    };
    for (std::size_t i = 0; i < area.q1.size(); ++i) {
        if (inside({area.q4[i], area.q2[i], area.q1[i]})) return true;
        if (inside({area.q4[i], area.q1[i], area.q3[i]})) return true;
    }
    return false;
}

bool TouchesArea(const SIMULATION_AREA& area, int column, int row) {
    return IsInsideArea(area, column, row) || IsInsideArea(area, column + 1, row) ||
           IsInsideArea(area, column, row + 1) || IsInsideArea(area, column + 1, row + 1);
}

bool IsWithinExtent(const ACQUISITION_SCENE& master, const RADAR_POINT& point) {
    const double range_margin_s = kExtentMargin * master.range_sampling_interval_s;
    const double azimuth_margin_s = kExtentMargin * master.azimuth_sampling_interval_s;
    return master.near_range_time_s - range_margin_s <= point.master_range_time_s &&
           point.master_range_time_s <= master.far_range_time_s + range_margin_s &&
           master.first_azimuth_time_s - azimuth_margin_s <= point.master_time_s &&
           point.master_time_s <= master.last_azimuth_time_s + azimuth_margin_s;
}

void SimulateCell(const SCENE& scene, RADAR_SOLUTION& solution, int column, int row) {
    if (!TouchesArea(scene.area, column, row)) return;
    for (const CORNER& corner : kCorners) {
        solution.SolveMaster(corner.slot, column + corner.column_step, row + corner.row_step);
        // The first corner alone decides; the filling clips to the grid anyway.
        if (corner.slot == 0 && !IsWithinExtent(scene.master, solution.Point(0))) return;
        solution.SolvePoint(corner.slot, scene.bistatic);
    }
    solution.FillTriangles();
}

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

void SimulateRows(SCENE_IN_USE& in_use, const DEM2PHASE_ARG& arg) {
    const SCENE& scene = in_use.Scene();
    const PROGRESS progress(arg);
    const CONVERGENCE_REPORT report;
    RADAR_SOLUTION solution(scene, in_use.ClaimsOf(arg.thread_number));
    if (scene.bistatic) solution.PrepareBistatic();
    for (std::uint32_t i = 0; i < arg.length; ++i) {
        const int row = static_cast<int>(arg.start + i);
        for (int column = scene.simulated.first_column; column < scene.simulated.last_column; ++column) {
            SimulateCell(scene, solution, column, row);
        }
        progress.RowDone(i);
    }
    Log().Message(LOGGING_LEVEL::TRACE, "   - end of thread nr: %u", arg.thread_number);
}

}  // namespace

void* DEM2PHASE_Thread(void* dem2phase_arg) {
    const DEM2PHASE_ARG& arg = *static_cast<const DEM2PHASE_ARG*>(dem2phase_arg);
    Log().Message(LOGGING_LEVEL::TRACE, "   - thread nr: %u  start: %u  length: %u", arg.thread_number, arg.start,
                  arg.length);
    SimulateRows(CurrentScene(), arg);
    return nullptr;
}
