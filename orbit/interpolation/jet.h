/// \file jet.h
/// Value and both derivatives of a function at one abscissa, and how far from the data it may be asked for them.

#pragma once

#include <cmath>

#include "orbit/interpolation/support_points.h"

struct JET {
    double value;
    double first;
    double second;
};

/// Every part rounded to the nearest float. @throws ERROR_ARGUMENT, logged as owner's, where a float would overflow:
/// the conversion itself would trap
[[nodiscard]] JET RoundedToFloat(const JET& jet, const char* owner);

/// How far from the middle of the data a polynomial may be asked before it, or a derivative, could overflow.
/// It lies far outside anything meaningful (degree 9: beyond 1e20 times the data) and turns a trap into a message.
struct REACH {
    double centre = 0;
    double radius = -1;  ///< negative: there are no data yet

    /// @param magnitude  sum of the absolute coefficients, in the variable (x - centre) / half_width
    void Set(double middle, double half_width, int degree, double magnitude);
    /// Quiet comparison: false for a NaN, without a trap.
    [[nodiscard]] bool Holds(double x) const { return std::islessequal(std::fabs(x - centre), radius); }
};

[[noreturn]] void RefuseQuery(const char* owner, const REACH& reach, double x);
