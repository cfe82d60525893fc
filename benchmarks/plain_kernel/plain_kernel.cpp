#include "benchmarks/plain_kernel/plain_kernel.h"

#include "benchmarks/plain_kernel/plain_solution.h"

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

bool IsWithinExtent(const ACQUISITION_SCENE& master, const PLAIN_POINT& point) {
    const double range_margin_s = kExtentMargin * master.range_sampling_interval_s;
    const double azimuth_margin_s = kExtentMargin * master.azimuth_sampling_interval_s;
    return master.near_range_time_s - range_margin_s <= point.master_range_time_s &&
           point.master_range_time_s <= master.far_range_time_s + range_margin_s &&
           master.first_azimuth_time_s - azimuth_margin_s <= point.master_time_s &&
           point.master_time_s <= master.last_azimuth_time_s + azimuth_margin_s;
}

void SimulateCell(const SCENE& scene, PLAIN_SOLUTION& solution, int column, int row) {
    if (!TouchesArea(scene.area, column, row)) return;
    for (const CORNER& corner : kCorners) {
        solution.SolveMaster(corner.slot, column + corner.column_step, row + corner.row_step);
        // The first corner alone decides; the filling clips to the grid anyway.
        if (corner.slot == 0 && !IsWithinExtent(scene.master, solution.Point(0))) return;
        solution.SolvePoint(corner.slot);
    }
    solution.FillTriangles();
}

}  // namespace

bool PlainIsInsideArea(const SIMULATION_AREA& area, int column, int row) {
    return IsInsideArea(area, column, row);
}

void PlainSimulateRows(const SCENE& scene, int first_row, int last_row) {
    const CONVERGENCE_REPORT report;
    PLAIN_SOLUTION solution(scene);
    for (int row = first_row; row < last_row; ++row) {
        for (int column = scene.simulated.first_column; column < scene.simulated.last_column; ++column) {
            SimulateCell(scene, solution, column, row);
        }
    }
}
