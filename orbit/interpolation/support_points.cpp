#include "orbit/interpolation/support_points.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

/// Between these, products of ordinates, steps and their squares stay inside the type, second derivatives included.
struct LIMITS {
    double largest;
    double smallest_step;
};
constexpr LIMITS kDoubleLimits = {1e60, 1e-60};
constexpr LIMITS kFloatLimits = {1e15, 1e-6};

/// isfinite first: an ordered comparison with a NaN would trap.
bool InRange(double value, double largest) {
    return std::isfinite(value) && std::fabs(value) <= largest;
}

void CheckAbscissae(std::span<const double> x, const LIMITS& limits, const char* owner, SORTED sorted) {
    for (size_t i = 0; i < x.size(); ++i) {
        if (!InRange(x[i], limits.largest))
            RefuseArgument(owner, "the abscissa of support point %zu, %.17g, is out of range", i, x[i]);
        if (i == 0) continue;
        const double step = x[i] - x[i - 1];
        if (step < 0 || (step > 0 && step < limits.smallest_step) || (step == 0 && sorted == SORTED::STRICTLY))
            RefuseArgument(owner, "the abscissae must increase, but support points %zu and %zu lie at %.17g and %.17g",
                           i - 1, i, x[i - 1], x[i]);
    }
}

void CheckOrdinates(std::span<const double> values, double largest, const char* owner, bool nan_passes) {
    for (size_t i = 0; i < values.size(); ++i) {
        if (nan_passes && std::isnan(values[i])) continue;
        if (!InRange(values[i], largest))
            RefuseArgument(owner, "the ordinate of support point %zu, %.17g, is out of range", i, values[i]);
    }
}

}  // namespace

SUPPORT_POINTS SUPPORT_POINTS::Part(int first, int count) const {
    const auto from = static_cast<size_t>(first);
    const auto size = static_cast<size_t>(count);
    return {x.subspan(from, size), y.subspan(from, size), slope.empty() ? slope : slope.subspan(from, size), is_float,
            first_index + first};
}

double Midway(double a, double b, bool is_float) {
    if (!is_float) return a + (b - a) / 2;
    const auto from = static_cast<float>(a);
    const auto to = static_cast<float>(b);
    return from + (to - from) / 2;
}

void RefuseArgument(const char* owner, const char* format, ...) {
    char text[400] = "";
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    LogAndThrow<ERROR_ARGUMENT>("%s: %s", owner, text);
}

void CheckSupportPoints(const SUPPORT_POINTS& points, const char* owner, SORTED sorted, bool nan_ordinates) {
    if (points.Count() < 1) RefuseArgument(owner, "no support points");
    const LIMITS& limits = points.is_float ? kFloatLimits : kDoubleLimits;
    CheckAbscissae(points.x, limits, owner, sorted);
    CheckOrdinates(points.y, limits.largest, owner, nan_ordinates);
    CheckOrdinates(points.slope, limits.largest, owner, nan_ordinates);
}
