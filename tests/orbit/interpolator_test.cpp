// Every interpolator against closed forms: value, first and second derivative.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "lib/baselib/errors/error_exception.h"
#include "orbit/local_interpolation.h"
#include "tests/orbit/closed_forms.h"

namespace {

/// Bounds of the error of value, first and second derivative.
struct BOUNDS {
    double value, first, second;
};

template <class T, class P>
void ExpectAgrees(const INTERPOLATION<T, P>& interpolation, const CLOSED_FORM& form, T x, const BOUNDS& bounds) {
    SCOPED_TRACE(testing::Message() << "x = " << x);
    T value, first, second;
    interpolation.Evaluate(x, value, first, second);
    EXPECT_NEAR(value, static_cast<double>(form.value(x)), bounds.value);
    EXPECT_NEAR(first, static_cast<double>(form.first(x)), bounds.first);
    EXPECT_NEAR(second, static_cast<double>(form.second(x)), bounds.second);
    EXPECT_EQ(interpolation.Value(x), value);
    EXPECT_EQ(interpolation.FirstDerivative(x), first);
    EXPECT_EQ(interpolation.SecondDerivative(x), second);
}

using ABSCISSAE = std::vector<double>;
using CHECK = std::function<void(const CLOSED_FORM&, const ABSCISSAE& nodes, const ABSCISSAE& queries, const BOUNDS&)>;

/// Creates an interpolator of type I on the form's samples at the nodes (first index -3) and checks it at the queries.
template <class I>
CHECK Made(int order, int count) {
    return [=](const CLOSED_FORM& form, const ABSCISSAE& nodes, const ABSCISSAE& queries, const BOUNDS& bounds) {
        constexpr bool kSlopes = requires(I i) { i.Create(ARRAY<DPOINT<double>>()); };
        I interpolation;
        interpolation.Create(SamplesOf<std::conditional_t<kSlopes, DPOINT<double>, POINT<double>>>(form, nodes, -3),
                             order, count);
        for (const double x : queries) ExpectAgrees(interpolation, form, x, bounds);
    };
}

template <class I>
using LOCAL = LOCAL_INTERPOLATION<double, I, POINT<double>>;
using LOCAL_HERMITE = LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;

TEST(Interpolators, ReproducePolynomialsUpToTheirDegreeAlsoOnUnevenPointsAndOutside) {
    struct CASE {
        const char* name;
        int degree;
        bool extrapolates;
        CHECK check;
    };
    const CASE cases[] = {
        {"polynom", 11, true, Made<POLYNOM<double>>(-1, -1)},
        {"polyfit 5", 5, true, Made<POLYNOM_FIT<double>>(5, -1)},
        {"chebyshev 6", 6, true, Made<CHEBY_POLY<double>>(6, -1)},
        {"hermite, 1 node", 1, false, Made<HERMITE_POLY<double>>(-1, 1)},
        {"hermite, 2 nodes", 3, false, Made<HERMITE_POLY<double>>(-1, 2)},
        {"hermite, 5 nodes", 9, false, Made<HERMITE_POLY<double>>(-1, 5)},
        {"local polynom, 4 points", 3, true, Made<LOCAL<POLYNOM<double>>>(-1, 4)},
        {"local polynom, 7 points", 6, true, Made<LOCAL<POLYNOM<double>>>(-1, 7)},
        {"local polyfit 3 over 6", 3, true, Made<LOCAL<POLYNOM_FIT<double>>>(3, 6)},
        {"local chebyshev 4 over 9", 4, true, Made<LOCAL<CHEBY_POLY<double>>>(4, 9)},
        {"local hermite, 3 nodes", 5, false, Made<LOCAL_HERMITE>(-1, 3)},
        {"local hermite, 4 nodes", 7, false, Made<LOCAL_HERMITE>(-1, 4)},
    };
    const ABSCISSAE nodes = {45990, 46001, 46010, 46019, 46030, 46041.5, 46050, 46060, 46069, 46080, 46092, 46100};
    const std::vector<long double> c = {7e6L, -3e5L, 2e4L, -900, 70, -8, 3, 2, -1, 0.7L, 0.3L, 0.2L};
    for (const CASE& one : cases) {
        SCOPED_TRACE(one.name);
        const CLOSED_FORM form = PolynomialOf({c.begin(), c.begin() + one.degree + 1}, 46045, 60);
        const ABSCISSAE queries = {45990, 45990.001, 45995, 46010, 46024.9, 46030, 46036, 46045.75, 46050, 46099, 46100};
        one.check(form, nodes, queries, {2e-8, 2e-8, 1e-8});
        if (one.extrapolates) one.check(form, nodes, {45985, 46103}, {2e-7, 2e-7, 1e-7});  // rounding grows outside
    }
}

}  // namespace
