/// \file least_place.h

#pragma once

#include <cmath>

/// Where a smooth function is least between two places: golden-section search, then the vertex of the parabola through
/// three values a step apart, since values closer than that differ by their last bits only.
template <class FUNCTION>
long double LeastPlace(FUNCTION value, long double low, long double high, long double step) {
    const long double ratio = (std::sqrt(5.0L) - 1.0L) / 2.0L;
    while (high - low > step / 200) {
        const long double left = high - ratio * (high - low);
        const long double right = low + ratio * (high - low);
        if (value(left) < value(right)) {
            high = right;
        } else {
            low = left;
        }
    }
    const long double middle = (low + high) / 2;
    const long double before = value(middle - step);
    const long double after = value(middle + step);
    return middle + step / 2 * (before - after) / (before - 2 * value(middle) + after);
}
