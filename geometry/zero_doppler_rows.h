/// \file zero_doppler_rows.h
/// Zero-Doppler solutions of many points at once: CalcSlaveTime's equation, first guess and stop rule, on the compiled
/// orbit, many points in step.
/// Accuracy: times agree with CalcSlaveTime to 1e-9 s, ranges to 1e-8 m. A point that leaves the compiled span or does
/// not converge soon is solved by CalcSlaveTime itself, with its messages. A point's result depends on nothing but the
/// point: not on its neighbours in the array, not on their number, not on the level of the vector code. Frame:
/// Earth-fixed, SI units; times on the handle's axis. Threads: no shared state.

#pragma once

#include "geometry/calc_slave_time.h"
#include "lib/baselib/vectors/vector_level.h"
#include "orbit/compiled_orbit.h"

/// One acquisition's orbit in both forms.
struct ROW_ORBIT {
    ORBIT_HANDLE handle;
    const COMPILED_ORBIT* compiled = nullptr;  ///< of handle.orbit
    double first_guess_s = 0.0;
};

/// Ground points, one array per coordinate.
struct ROW_POINTS {
    const double* x_m;
    const double* y_m;
    const double* z_m;
};

/// @param first, count     the points to solve: elements first .. first + count - 1 of all arrays
/// @param time_s, range_m  receive the solutions
/// @return how many of the points were solved by CalcSlaveTime, one by one
[[nodiscard]] int SolveZeroDopplerRow(VECTOR_LEVEL level, const ROW_ORBIT& orbit, const ROW_POINTS& points, int first,
                                      int count, double* time_s, double* range_m);
