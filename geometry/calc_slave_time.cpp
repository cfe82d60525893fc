#include "geometry/calc_slave_time.h"

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
    const double first_s = handle.orbit->FirstTime() - handle.offset_s;
    const double last_s = handle.orbit->LastTime() - handle.offset_s;
    return {first_s - (last_s - first_s), last_s + (last_s - first_s)};
}

}  // namespace

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
    const TIME_WINDOW data = {handle.orbit->FirstTime() - handle.offset_s, handle.orbit->LastTime() - handle.offset_s};
    // The residual grows with time as long as satellite and point are less than 90 degrees apart.
    if (DopplerResidual(*handle.orbit, handle.offset_s, point_m, data.first_s) > 0.0) return std::nullopt;
    if (DopplerResidual(*handle.orbit, handle.offset_s, point_m, data.last_s) < 0.0) return std::nullopt;
    return SolveZeroDoppler(*handle.orbit, handle.offset_s, point_m, first_guess_s, data);
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
