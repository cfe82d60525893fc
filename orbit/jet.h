/// \file jet.h
/// Value and both derivatives of a function at one abscissa, and how they leave an interpolator.

#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

#include "orbit/support_points.h"

struct JET {
    double value;
    double first;
    double second;
};

/// Narrows one result. A float that would overflow is refused: the conversion itself would trap.
template <class T>
T NarrowResult(double result, const char* owner) {
    if constexpr (std::is_same_v<T, float>) {
        if (std::isgreater(std::fabs(result), static_cast<double>(std::numeric_limits<float>::max())))
            RefuseArgument(owner, "the result %g does not fit the type float", result);
    }
    return static_cast<T>(result);
}

template <class T>
void Deliver(const JET& jet, const char* owner, T& value, T& first, T& second) {
    value = NarrowResult<T>(jet.value, owner);
    first = NarrowResult<T>(jet.first, owner);
    second = NarrowResult<T>(jet.second, owner);
}

/// How far from the middle of the data a polynomial may be asked before it, or a derivative, could overflow.
/// It lies far outside anything meaningful (degree 9: beyond 1e20 times the data) and turns a trap into a message.
struct REACH {
    double centre = 0;
    double radius = -1;  ///< negative: there are no data yet

    /// @param magnitude  sum of the absolute coefficients, in the variable (x - centre) / half_width
    void Set(double middle, double half_width, int degree, double magnitude) {
        constexpr double kLogBudget = 570;  // exp(570) = 1e247; the second derivative needs the rest of the range
        const double log_room = kLogBudget - std::log(std::fmax(1.0, magnitude));
        centre = middle;
        radius = half_width * std::exp(std::fmin(300.0, std::fmax(0.0, log_room / (degree + 1))));
    }
    /// Quiet comparison: false for a NaN, without a trap.
    bool Holds(double x) const { return std::islessequal(std::fabs(x - centre), radius); }
};

[[noreturn]] inline void RefuseQuery(const char* owner, const REACH& reach, double x) {
    if (reach.radius < 0) RefuseArgument(owner, "a query at %.17g before there are support points", x);
    RefuseArgument(owner, "a query at %.17g lies so far outside the data that its result would overflow", x);
}
