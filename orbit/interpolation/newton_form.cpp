#include "orbit/interpolation/newton_form.h"

#include <cmath>
#include <vector>

#include "orbit/interpolation/extended_real.h"

double NewtonScale(double first, double last) {
    return last > first ? 4 / (last - first) : 1;
}

void DividedDifferences(std::span<NEWTON_TERM> terms, std::span<const double> y, std::span<const double> slope,
                        double scale, const char* owner) {
    constexpr double kSmallestDistance = 4e-9;  // of the interval's length 4
    constexpr double kLargest = 1e150;
    const auto check_range = [owner](double size) {
        if (std::isgreater(size, kLargest))
            RefuseArgument(owner, "the support points lie too unevenly for one polynomial");
    };
    std::vector<EXTENDED_REAL> difference(y.begin(), y.end());
    check_range(1.0 / scale);
    for (const double ordinate : y) check_range(std::fabs(ordinate));
    for (size_t order = 0; order < terms.size(); ++order) {
        for (size_t i = terms.size() - 1; order > 0 && i >= order; --i) {
            const double from = terms[i - order].node;
            const double to = terms[i].node;
            const EXTENDED_REAL distance = (EXTENDED_REAL(to) - from) * scale;
            if (to == from) {
                check_range(std::fabs(slope[i]));
                difference[i] = EXTENDED_REAL(slope[i]) / scale;
            } else if (Magnitude(distance) < kSmallestDistance) {
                RefuseArgument(owner, "the support points at %.17g and %.17g lie too close for one polynomial", from,
                               to);
            } else {
                difference[i] = (difference[i] - difference[i - 1]) / distance;
            }
            check_range(Magnitude(difference[i]));
        }
        terms[order].coefficient = static_cast<double>(difference[order]);
    }
}
