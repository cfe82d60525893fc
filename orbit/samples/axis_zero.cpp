#include "orbit/samples/axis_zero.h"

#include <cmath>

namespace {

/// a + b with what its rounding loses. Source: D. E. Knuth, The Art of Computer Programming, vol. 2, 4.2.2.
struct EXACT_SUM {
    double sum;
    double lost;
};

EXACT_SUM Add(double a, double b) {
    const double sum = a + b;
    const double part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

/// later - earlier - whole_s, rounded once.
double PlainSeconds(double earlier, double later, double whole_s) {
    const EXACT_SUM difference = Add(later, -earlier);
    const EXACT_SUM shifted = Add(difference.sum, -whole_s);
    return shifted.sum + (shifted.lost + difference.lost);
}

/// later - earlier, leap seconds counted; the kinds are the same and no plain seconds.
long long MicrosecondsBetween(const ANY_TIME& earlier, const ANY_TIME& later) {
    if (const auto* const met = std::get_if<MISSION_ELAPSED_TIME>(&earlier)) {
        return std::get<MISSION_ELAPSED_TIME>(later).Microseconds() - met->Microseconds();
    }
    const DURATION difference = std::get<UNIVERSAL_TIME>(later) - std::get<UNIVERSAL_TIME>(earlier);
    return difference.days * 86'400'000'000LL + difference.milliseconds * 1000LL + difference.microseconds;
}

/// later - earlier - whole_s.
double Seconds(const ANY_TIME& earlier, const ANY_TIME& later, double whole_s) {
    RequireSameKind(earlier, later);
    if (const auto* const number_s = std::get_if<double>(&earlier)) {
        return PlainSeconds(*number_s, std::get<double>(later), whole_s);
    }
    return static_cast<double>(MicrosecondsBetween(earlier, later) - std::llround(whole_s) * 1'000'000) / 1e6;
}

}  // namespace

AXIS_ZERO ZeroNear(const ANY_TIME& reference, const ANY_TIME& t) {
    const double seconds = Seconds(reference, t, 0.0);
    return {reference, std::fabs(seconds) <= kNearSeconds ? 0.0 : std::floor(seconds)};
}

double SecondsSince(const AXIS_ZERO& zero, const ANY_TIME& t) {
    return Seconds(zero.reference, t, zero.after_s);
}

double SecondsBetween(const AXIS_ZERO& from, const AXIS_ZERO& to) {
    return Seconds(from.reference, to.reference, from.after_s - to.after_s);
}
