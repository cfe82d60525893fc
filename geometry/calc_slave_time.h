/// \file calc_slave_time.h
/// The zero-Doppler time of a ground point: when the line of sight is perpendicular to the satellite's velocity.
/// Serves master and slave alike. Frame: Earth-fixed, SI units. Times: seconds on the handle's axis.
/// Threads: reentrant; the count of solutions that did not converge is kept per thread.

#pragma once

#include <optional>

#include "geometry/zero_doppler.h"
#include "lib/baselib/containers/records.h"

template <class T, class V>
class GENERAL_ORBIT;
using ORBIT_OF_POOL = GENERAL_ORBIT<double, VECTOR_3D<double>>;

/// An orbit and the offset of the caller's time axis: the orbit is always evaluated at t + offset_s.
struct ORBIT_HANDLE {
    const ORBIT_OF_POOL* orbit = nullptr;  ///< not owned
    double offset_s = 0.0;
};

/// The span of the orbit's data on the handle's axis, pulled inward where rounding would lead out of it: with the
/// offset added, its ends lie inside the data, where hermite interpolation does not end the process.
[[nodiscard]] TIME_WINDOW DataWindow(const ORBIT_HANDLE& handle);

/// Solves V(t) . (S(t) - P) = 0 by Newton's method, slope A . (S - P) + V . V.
/// @param point_m        ground point P
/// @param range_m        receives |S - P| of the last state evaluated, one way: when the step test ended the iteration,
///                       that is the state before the last step (below 1e-9 s, 8 um along a low orbit)
/// @param first_guess_s  the returned value when it already solves the equation
/// Accuracy: ends when the residual is at most 1e-9 m^2/s or, in practice, the step at most 1e-9 s.
/// Errors: none thrown. No convergence in 100 steps: a WARNING (see CONVERGENCE_REPORT), the last estimate is returned.
///         An estimate never leaves the orbit's data by more than their own length, so that a hopeless point can not
///         drive the interpolation to overflow.
double CalcSlaveTime(const ORBIT_HANDLE& handle, const VECTOR_3D<double>& point_m, double* range_m,
                     double first_guess_s);

/// The zero-Doppler solution, if it lies inside the span of the orbit's state vectors: never asks the orbit outside its
/// data, where some interpolations end the process. A first guess outside starts at the nearer end.
[[nodiscard]] std::optional<ZERO_DOPPLER> ZeroDopplerInsideData(const ORBIT_HANDLE& handle,
                                                                const VECTOR_3D<double>& point_m, double first_guess_s);

/// Limits what CalcSlaveTime logs on the thread that owns it: the first 10 solutions without convergence get their
/// line, the destructor tells in one WARNING how many more there were. With an orbit in single precision every solution
/// may end so (positions known to half a metre never meet the tolerance), and millions of lines would bury the log.
/// Without such an object every line is logged.
class CONVERGENCE_REPORT {
  public:
    CONVERGENCE_REPORT();
    ~CONVERGENCE_REPORT();
    CONVERGENCE_REPORT(const CONVERGENCE_REPORT&) = delete;
    CONVERGENCE_REPORT& operator=(const CONVERGENCE_REPORT&) = delete;
};
