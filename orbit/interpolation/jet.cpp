#include "orbit/interpolation/jet.h"

#include <limits>

namespace {

double RoundedToFloat(double result, const char* owner) {
    if (std::isgreater(std::fabs(result), static_cast<double>(std::numeric_limits<float>::max())))
        RefuseArgument(owner, "the result %g does not fit the type float", result);
    return static_cast<float>(result);
}

}  // namespace

JET RoundedToFloat(const JET& jet, const char* owner) {
    return {RoundedToFloat(jet.value, owner), RoundedToFloat(jet.first, owner), RoundedToFloat(jet.second, owner)};
}

void REACH::Set(double middle, double half_width, int degree, double magnitude) {
    constexpr double kLogBudget = 570;  // exp(570) = 1e247; the second derivative needs the rest of the range
    const double log_room = kLogBudget - std::log(std::fmax(1.0, magnitude));
    centre = middle;
    radius = half_width * std::exp(std::fmin(300.0, std::fmax(0.0, log_room / (degree + 1))));
}

void RefuseQuery(const char* owner, const REACH& reach, double x) {
    if (reach.radius < 0) RefuseArgument(owner, "a query at %.17g before there are support points", x);
    RefuseArgument(owner, "a query at %.17g lies so far outside the data that its result would overflow", x);
}
