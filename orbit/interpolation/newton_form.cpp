#include "orbit/interpolation/newton_form.h"

#include <cmath>
#include <vector>

double NewtonScale(double first, double last) {
    return last > first ? 4 / (last - first) : 1;
}

void DividedDifferences(std::span<NEWTON_TERM> terms, std::span<const double> y, std::span<const double> slope,
                        double scale, const char* owner) {
    constexpr long double kSmallestDistance = 4e-9L;  // of the interval's length 4
    constexpr long double kLargestCoefficient = 1e150L;
    std::vector<long double> difference(y.begin(), y.end());
    for (size_t order = 0; order < terms.size(); ++order) {
        for (size_t i = terms.size() - 1; order > 0 && i >= order; --i) {
            const double from = terms[i - order].node;
            const double to = terms[i].node;
            const long double distance = (static_cast<long double>(to) - from) * scale;
            if (to == from) {
                difference[i] = static_cast<long double>(slope[i]) / scale;
            } else if (std::fabs(distance) < kSmallestDistance) {
                RefuseArgument(owner, "the support points at %.17g and %.17g lie too close for one polynomial", from,
                               to);
            } else {
                difference[i] = (difference[i] - difference[i - 1]) / distance;
            }
        }
        const long double coefficient = difference[order];
        if (std::isgreater(std::fabs(coefficient), kLargestCoefficient))
            RefuseArgument(owner, "the support points lie too unevenly for one polynomial");
        terms[order].coefficient = static_cast<double>(coefficient);
    }
}
