#include "orbit/support_points.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <type_traits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// Between these, products of ordinates, steps and their squares stay inside T, second derivatives included.
template <class T>
struct LIMITS {
    static constexpr double kLargest = std::is_same_v<T, float> ? 1e15 : 1e60;
    static constexpr double kSmallestStep = std::is_same_v<T, float> ? 1e-6 : 1e-60;
};

/// isfinite first: an ordered comparison with a NaN would trap.
bool InRange(double value, double largest) {
    return std::isfinite(value) && std::fabs(value) <= largest;
}

template <class T>
void CheckAbscissae(const std::vector<double>& x, const char* owner, SORTED sorted) {
    for (size_t i = 0; i < x.size(); ++i) {
        if (!InRange(x[i], LIMITS<T>::kLargest))
            RefuseArgument(owner, "the abscissa of support point %zu, %.17g, is out of range", i, x[i]);
        if (i == 0) continue;
        const double step = x[i] - x[i - 1];
        if (step < 0 || (step > 0 && step < LIMITS<T>::kSmallestStep) || (step == 0 && sorted == SORTED::STRICTLY))
            RefuseArgument(owner, "the abscissae must increase, but support points %zu and %zu lie at %.17g and %.17g",
                           i - 1, i, x[i - 1], x[i]);
    }
}

template <class T>
void CheckOrdinates(const std::vector<double>& values, const char* owner, bool nan_passes) {
    for (size_t i = 0; i < values.size(); ++i) {
        if (nan_passes && std::isnan(values[i])) continue;
        if (!InRange(values[i], LIMITS<T>::kLargest))
            RefuseArgument(owner, "the ordinate of support point %zu, %.17g, is out of range", i, values[i]);
    }
}

}  // namespace

int SUPPORT_POINTS::IntervalOf(double at) const {
    if (x.size() < 3) return 0;
    const auto after = std::upper_bound(x.begin() + 1, x.end() - 1, at);
    return static_cast<int>(after - x.begin()) - 1;
}

void RefuseArgument(const char* owner, const char* format, ...) {
    char text[400] = "";
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    Log().Message(LOGGING_LEVEL::ALARM, "%s: %s", owner, text);
    throw ERROR_ARGUMENT();
}

template <class P>
SUPPORT_POINTS CheckedSupportPoints(const ARRAY<P>& points, const char* owner, SORTED sorted, bool nan_ordinates) {
    using T = decltype(P::x);
    if (points.Count() < 1) RefuseArgument(owner, "no support points");
    SUPPORT_POINTS checked;
    for (const P& point : points) {
        checked.x.push_back(static_cast<double>(point.x));
        checked.y.push_back(static_cast<double>(point.y));
        if constexpr (requires { point.dy; }) checked.slope.push_back(static_cast<double>(point.dy));
    }
    CheckAbscissae<T>(checked.x, owner, sorted);
    CheckOrdinates<T>(checked.y, owner, nan_ordinates);
    CheckOrdinates<T>(checked.slope, owner, nan_ordinates);
    return checked;
}

template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<POINT<float>>&, const char*, SORTED, bool);
template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<POINT<double>>&, const char*, SORTED, bool);
template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<DPOINT<float>>&, const char*, SORTED, bool);
template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<DPOINT<double>>&, const char*, SORTED, bool);
