/// \file closed_forms.h
/// Functions whose values and derivatives are known in closed form, and support points on them.

#pragma once

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/records.h"

struct CLOSED_FORM {
    std::function<long double(long double)> value, first, second;
};

/// sum of c[k] ((x - centre) / width)^k
inline CLOSED_FORM PolynomialOf(std::vector<long double> c, long double centre, long double width) {
    const auto derivative = [c, centre, width](int order, long double x) {
        long double sum = 0;
        for (int k = static_cast<int>(c.size()) - 1; k >= order; --k) {
            long double factor = 1;
            for (int i = 0; i < order; ++i) factor *= k - i;
            sum = sum * ((x - centre) / width) + factor * c[static_cast<size_t>(k)];
        }
        return sum / std::pow(width, static_cast<long double>(order));
    };
    return {[=](long double x) { return derivative(0, x); }, [=](long double x) { return derivative(1, x); },
            [=](long double x) { return derivative(2, x); }};
}

/// amplitude sin(omega x + phase): one coordinate of a circular orbit.
inline CLOSED_FORM SineOf(long double amplitude, long double omega, long double phase = 0.3L) {
    return {[=](long double x) { return amplitude * std::sin(omega * x + phase); },
            [=](long double x) { return amplitude * omega * std::cos(omega * x + phase); },
            [=](long double x) { return -amplitude * omega * omega * std::sin(omega * x + phase); }};
}

template <class P>
ARRAY<P> SamplesOf(const CLOSED_FORM& form, const std::vector<double>& abscissae, int first_index = 0) {
    ARRAY<P> points(first_index, static_cast<int>(abscissae.size()));
    using T = decltype(P::x);
    for (size_t i = 0; i < abscissae.size(); ++i) {
        P& point = points[first_index + static_cast<int>(i)];
        point.x = static_cast<T>(abscissae[i]);
        point.y = static_cast<T>(form.value(point.x));
        if constexpr (requires { point.dy; }) point.dy = static_cast<T>(form.first(point.x));
    }
    return points;
}

/// An interpolator on the points, with the order and count of support points that it has by itself, or others.
template <class I, class P>
I Created(const ARRAY<P>& points, int order = -1, int count = -1) {
    I interpolation;
    interpolation.Create(points, order, count);
    return interpolation;
}

/// first, first + step, ...; count of them.
inline std::vector<double> Grid(double first, double step, int count) {
    std::vector<double> grid;
    for (int i = 0; i < count; ++i) grid.push_back(first + i * step);
    return grid;
}
