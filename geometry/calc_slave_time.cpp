#include "geometry/calc_slave_time.h"

#include <cmath>
#include <limits>

#include "geometry/zero_doppler.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/general_orbit.h"

namespace {

/// Number of solutions of this thread that did not converge; negative: nobody counts, every one is logged.
thread_local long long unconverged_count = -1;
constexpr long long kLinesPerThread = 10;

void LogUnconverged(const ZERO_DOPPLER& solution) {
    if (unconverged_count >= 0 && ++unconverged_count > kLinesPerThread) return;
    Log().Message(LOGGING_LEVEL::WARNING,
                  "iterations count %d exceeded in CalcSlaveTime( t=%G, Residuals: dt =%G, v_sat.r =%G)",
                  kZeroDopplerMaxIterations, solution.time_s, solution.last_step_s, solution.residual);
}

/// The orbit's data and as much again on either side: an estimate farther off means nothing, and a polynomial of high
/// order would overflow there.
TIME_WINDOW WindowOf(const ORBIT_HANDLE& handle) {
    const TIME_WINDOW data = DataWindow(handle);
    const double length_s = data.last_s - data.first_s;
    return {data.first_s - length_s, data.last_s + length_s};
}

}  // namespace

TIME_WINDOW DataWindow(const ORBIT_HANDLE& handle) {
    const double first_s = handle.orbit->FirstTime();
    const double last_s = handle.orbit->LastTime();
    TIME_WINDOW window = {first_s - handle.offset_s, last_s - handle.offset_s};
    constexpr double kLater = std::numeric_limits<double>::infinity();
    while (window.first_s + handle.offset_s < first_s) window.first_s = std::nextafter(window.first_s, kLater);
    while (window.last_s + handle.offset_s > last_s) window.last_s = std::nextafter(window.last_s, -kLater);
    return window;
}

double CalcSlaveTime(const ORBIT_HANDLE& handle, const VECTOR_3D<double>& point_m, double* range_m,
                     double first_guess_s) {
    const ZERO_DOPPLER solution =
        SolveZeroDoppler(*handle.orbit, handle.offset_s, point_m, first_guess_s, WindowOf(handle));
    if (!solution.converged) LogUnconverged(solution);
    *range_m = solution.range_m;
    return solution.time_s;
}

std::optional<ZERO_DOPPLER> ZeroDopplerInsideData(const ORBIT_HANDLE& handle, const VECTOR_3D<double>& point_m,
                                                  double first_guess_s) {
    const TIME_WINDOW data = DataWindow(handle);
    // The residual grows with time as long as satellite and point are less than 90 degrees apart.
    if (DopplerResidual(*handle.orbit, handle.offset_s, point_m, data.first_s) > 0.0) return std::nullopt;
    if (DopplerResidual(*handle.orbit, handle.offset_s, point_m, data.last_s) < 0.0) return std::nullopt;
    const double guess_s = std::clamp(first_guess_s, data.first_s, data.last_s);
    return SolveZeroDoppler(*handle.orbit, handle.offset_s, point_m, guess_s, data);
}

CONVERGENCE_REPORT::CONVERGENCE_REPORT() {
    unconverged_count = 0;
}

CONVERGENCE_REPORT::~CONVERGENCE_REPORT() {
    if (unconverged_count > kLinesPerThread) {
        Log().Message(LOGGING_LEVEL::WARNING, "CalcSlaveTime: %lld more solutions of this thread did not converge",
                      unconverged_count - kLinesPerThread);
    }
    unconverged_count = -1;
}
