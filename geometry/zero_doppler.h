/// \file zero_doppler.h
/// The zero-Doppler iteration itself, on any orbit whose State(t) gives position_m, velocity_m_s and acceleration_m_s2.
/// CalcSlaveTime is its form for the program's orbits.
/// Times: seconds; the orbit is evaluated at t + offset_s.

#pragma once

#include <algorithm>
#include <cmath>

#include "geometry/vector_arithmetic.h"

struct ZERO_DOPPLER {
    double time_s;
    double range_m;      ///< |S - P| of the last state evaluated
    double last_step_s;  ///< 0 when no step was made
    double residual;     ///< V . (S - P) of the last state evaluated, m^2/s
    bool converged;
};

/// Bounds of the estimate, on the caller's time axis.
struct TIME_WINDOW {
    double first_s;
    double last_s;
};

inline constexpr double kZeroDopplerTolerance = 1e-9;  ///< residual, m^2/s, and step, s
inline constexpr int kZeroDopplerMaxIterations = 100;
inline constexpr double kZeroDopplerLongestStepSeconds = 1e6;

/// V(t) . (S(t) - P), m^2/s.
template <class ORBIT>
[[nodiscard]] double DopplerResidual(const ORBIT& orbit, double offset_s, const VECTOR_3D<double>& point_m,
                                     double time_s) {
    const auto state = orbit.State(time_s + offset_s);
    return DotProduct(state.velocity_m_s, state.position_m - point_m);
}

/// Newton's method on V . (S - P), slope A . (S - P) + V . V. A step that would leave the window ends on its edge.
/// Source: the derivative of |S - P|^2 / 2.
template <class ORBIT>
[[nodiscard]] ZERO_DOPPLER SolveZeroDoppler(const ORBIT& orbit, double offset_s, const VECTOR_3D<double>& point_m,
                                            double first_guess_s, const TIME_WINDOW& window) {
    ZERO_DOPPLER solution = {first_guess_s, 0.0, 0.0, 0.0, false};
    for (int iteration = 0; iteration < kZeroDopplerMaxIterations; ++iteration) {
        const auto state = orbit.State(solution.time_s + offset_s);
        const VECTOR_3D<double> sight_m = state.position_m - point_m;
        solution.range_m = Length(sight_m);
        solution.residual = DotProduct(state.velocity_m_s, sight_m);
        solution.converged = std::abs(solution.residual) <= kZeroDopplerTolerance;
        if (solution.converged) break;

        const double slope =
            DotProduct(state.acceleration_m_s2, sight_m) + DotProduct(state.velocity_m_s, state.velocity_m_s);
        // A vanishing slope would divide by zero with the traps on; the window holds whatever step comes out.
        const bool steep = std::abs(solution.residual) < kZeroDopplerLongestStepSeconds * std::abs(slope);
        solution.last_step_s =
            steep ? -solution.residual / slope : std::copysign(kZeroDopplerLongestStepSeconds, -solution.residual);
        const double next_s = solution.time_s + solution.last_step_s;
        solution.time_s = std::clamp(next_s, window.first_s, window.last_s);
        solution.converged = std::abs(solution.last_step_s) <= kZeroDopplerTolerance;
        if (solution.converged) break;
    }
    return solution;
}
