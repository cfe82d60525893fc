// Every interpolator against closed forms: value, first and second derivative.

#include <gtest/gtest.h>

#include <thread>

#include "orbit/interpolation/everett.h"
#include "orbit/interpolation/local_interpolation.h"
#include "orbit/interpolation/spline.h"
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
        constexpr bool kSlopes = requires(I i) {
            i.Create(ARRAY<DPOINT<double>>());
        };
        using SUPPORT = std::conditional_t<kSlopes, DPOINT<double>, POINT<double>>;
        const auto interpolation = Created<I>(SamplesOf<SUPPORT>(form, nodes, -3), order, count);
        for (const double x : queries) ExpectAgrees(interpolation, form, x, bounds);
    };
}

template <class I>
using LOCAL = LOCAL_INTERPOLATION<double, I, POINT<double>>;
using LOCAL_HERMITE = LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;

TEST(Interpolators, ReproducePolynomialsUpToTheirDegreeAlsoOnUnevenPointsAndOutside) {
    const std::tuple<const char*, int, bool, CHECK> cases[] = {
        // name, degree, whether it extrapolates
        {"polynom", 11, true, Made<POLYNOM<double>>(-1, -1)},
        {"polyfit 5", 5, true, Made<POLYNOM_FIT<double>>(5, -1)},
        {"chebyshev 6", 6, true, Made<CHEBY_POLY<double>>(6, -1)},
        {"hermite, 1 node", 1, false, Made<HERMITE_POLY<double>>(-1, 1)},
        {"hermite, 5 nodes", 9, false, Made<HERMITE_POLY<double>>(-1, 5)},
        {"local polynom, 7 points", 6, true, Made<LOCAL<POLYNOM<double>>>(-1, 7)},
        {"local polyfit 3 over 6", 3, true, Made<LOCAL<POLYNOM_FIT<double>>>(3, 6)},
        {"local chebyshev 4 over 9", 4, true, Made<LOCAL<CHEBY_POLY<double>>>(4, 9)},
        {"local hermite, 4 nodes", 7, false, Made<LOCAL_HERMITE>(-1, 4)},
    };
    const ABSCISSAE nodes = {45990, 46001, 46010, 46019, 46030, 46041.5, 46050, 46060, 46069, 46080, 46092, 46100};
    const std::vector<long double> c = {7e6L, -3e5L, 2e4L, -900, 70, -8, 3, 2, -1, 0.7L, 0.3L, 0.2L};
    for (const auto& [name, degree, extrapolates, check] : cases) {
        SCOPED_TRACE(name);
        const CLOSED_FORM form = PolynomialOf({c.begin(), c.begin() + degree + 1}, 46045, 60);
        const ABSCISSAE queries = {45990, 45995, 46024.9, 46030, 46045.75, 46099, 46100};
        check(form, nodes, queries, {2e-8, 2e-8, 1e-8});
        if (extrapolates) check(form, nodes, {45985, 46103}, {2e-7, 2e-7, 1e-7});  // rounding grows outside
    }
}

TEST(Interpolators, TheMiddleOfTwoTimesIsTheirTypesOwn) {
    EXPECT_NEAR(Midway(100000.1, 100000.3, false), 100000.2, 1e-10);
    EXPECT_EQ(Midway(16777216, 16777218, true), 16777216 + 1.0F);  // no float lies between
}

TEST(Interpolators, EverettIsExactOneDegreeAboveItsOrderInsideAndForAQuadraticOnThreePoints) {
    const std::vector<long double> c = {7e6L, -3e5L, 2e4L, -900, 70, -8};
    const std::tuple<const char*, int, int, int, ABSCISSAE> cases[] = {
        // name, order, points, degree, queries
        {"order 0 is linear", 0, 4, 1, {100, 104, 110, 119.5, 129}},
        {"order 4, inner cells", 4, 8, 5, {120, 121, 130, 138, 149}},
        {"order 2 over three points", 2, 3, 2, {95, 100, 101, 110, 115, 120, 126}},
        {"order 4 of a quadratic, everywhere", 4, 6, 2, {95, 100, 105, 115, 150, 156}},
    };
    for (const auto& [name, order, points, degree, queries] : cases) {
        SCOPED_TRACE(name);
        const CLOSED_FORM form = PolynomialOf({c.begin(), c.begin() + degree + 1}, 120, 60);
        Made<EVERETT<double>>(order, -1)(form, Grid(100, 10, points), queries, {1e-8, 1e-8, 1e-8});
    }
}

/// A cubic spline with its knots at x0, x0 + 1, ...: 3 + 2 t + sum of c[k] (t - k)^3 for t > k, t = x - x0. Its second
/// derivative is 0 at both ends, so that the interpolating natural spline is this function itself.
CLOSED_FORM NaturalSpline(double x0, int knots) {  // knots from 5
    std::vector<long double> c = {0.5L, -0.75L, 0.4L};
    while (static_cast<int>(c.size()) < knots - 2) c.push_back(0.01L * static_cast<long double>(c.size()));
    long double moment = 0;
    for (int k = 0; k < knots - 2; ++k) moment += c[static_cast<size_t>(k)] * (knots - 1 - k);
    c.push_back(-moment);  // at the last but one knot: makes the second derivative at the last one 0
    const auto sum = [c, x0](int power, long double factor, long double x) {
        long double total = 0;
        for (size_t k = 0; k < c.size(); ++k) {
            const long double d = x - x0 - static_cast<long double>(k);
            if (d > 0 || k == 0) total += factor * c[k] * std::pow(d, static_cast<long double>(power));
        }
        return total;
    };
    return {[=](long double x) { return 3 + 2 * (x - x0) + sum(3, 1, x); },
            [=](long double x) { return 2 + sum(2, 3, x); }, [=](long double x) { return sum(1, 6, x); }};
}

TEST(Interpolators, SplineIsTheNaturalOneWithFullAndWithTridiagonalSystem) {
    for (const int knots : {5, SPLINE_CORE::kMaxFullSystem + 2, SPLINE_CORE::kMaxFullSystem + 3}) {
        SCOPED_TRACE(knots);
        const double end = 1000 + knots - 1;
        const double size = std::pow(knots, 3);
        Made<SPLINE<double>>(-1, -1)(NaturalSpline(1000, knots), Grid(1000, 1, knots),
                                     {999.5, 1000, 1000.25, 1001, 1001.5, end - 1.5, end - 0.25, end, end + 0.5},
                                     {1e-12 * size, 1e-12 * size, 1e-12 * size});
    }
    Made<SPLINE<double>>(-1, -1)(PolynomialOf({5, 3}, 0, 1), {1, 7}, {0, 1, 2, 7, 9}, {1e-14, 1e-14, 1e-14});
}

/// Error bound of the polynomial with the given nodes (each taken `times`) for A sin(w x): A w^n / n! prod |x - node|.
long double SineBound(long double amplitude, long double omega, const ABSCISSAE& nodes, int times, double x) {
    long double bound = amplitude;
    int n = 0;
    for (const double node : nodes)
        for (int i = 0; i < times; ++i) bound *= omega * std::fabs(static_cast<long double>(x) - node) / ++n;
    return bound;
}

TEST(Interpolators, SinesStayWithinTheKnownErrorBoundInEveryCell) {
    constexpr long double kAmplitude = 7e6L;
    constexpr long double kOmega = 2 * 3.14159265358979323846L / 200;
    const ABSCISSAE grid = Grid(500, 10, 16);
    const CLOSED_FORM sine = SineOf(kAmplitude, kOmega);
    const auto part = [&](int first, int count) {
        return ABSCISSAE(grid.begin() + first, grid.begin() + first + count);
    };
    const ARRAY<POINT<double>> points = SamplesOf<POINT<double>>(sine, grid, 7);
    const ARRAY<DPOINT<double>> slopes = SamplesOf<DPOINT<double>>(sine, grid, -20);
    const auto hermite = Created<HERMITE_POLY<double>>(slopes, -1, 4);
    const auto local_odd = Created<LOCAL<POLYNOM<double>>>(points, -1, 5);
    const auto local_hermite = Created<LOCAL_HERMITE>(slopes, -1, 3);
    const auto everett = Created<EVERETT<double>>(points, 4);
    for (double x = 500; x <= 650; x += 1.25) {
        SCOPED_TRACE(x);
        const auto error = [&](const auto& interpolation) {
            return static_cast<double>(std::fabs(static_cast<long double>(interpolation.Value(x)) - sine.value(x)));
        };
        const auto bound = [&](const ABSCISSAE& nodes, int times = 1) {
            return static_cast<double>(SineBound(kAmplitude, kOmega, nodes, times, x)) + 2e-8;
        };
        const double t = (x - 500) / 10;
        const int j = static_cast<int>(std::ceil(t));
        EXPECT_LE(error(hermite), bound(part(std::clamp(j - 2, 0, 12), 4), 2));
        EXPECT_LE(error(local_odd), bound(part(std::clamp(static_cast<int>(std::floor(t + 0.5)) - 2, 0, 11), 5)));
        EXPECT_LE(error(local_hermite),
                  bound(part(std::clamp(static_cast<int>(std::floor(t + 0.5)) - 1, 0, 13), 3), 2));
        if (x >= 520 && x <= 630) {
            EXPECT_LE(error(everett), bound(part(std::clamp(static_cast<int>(t) - 2, 0, 10), 6)));
        }
    }
}

TEST(Interpolators, GiveTheOrdinateAtASupportPointBitForBit) {
    const ABSCISSAE nodes = Grid(46000.123456, 10.000001, 84);
    const CLOSED_FORM sine = SineOf(7e6L, 1e-3L);
    const ARRAY<DPOINT<double>> slopes = SamplesOf<DPOINT<double>>(sine, nodes);
    const auto polynom = Created<POLYNOM<double>>(SamplesOf<POINT<double>>(sine, nodes));
    const auto hermite = Created<HERMITE_POLY<double>>(slopes, -1, 8);
    const auto local_hermite = Created<LOCAL_HERMITE>(slopes, -1, 8);
    for (const DPOINT<double>& point : slopes) {
        EXPECT_EQ(polynom.Value(point.x), point.y);
        EXPECT_EQ(hermite.Value(point.x), point.y);
        EXPECT_EQ(hermite.FirstDerivative(point.x), point.dy);
        EXPECT_EQ(local_hermite.Value(point.x), point.y) << "also at joints and at both ends";
    }
}

TEST(Interpolators, AnswerManyThreadsAsTheyAnswerOne) {
    const CLOSED_FORM sine = SineOf(7e6L, 1e-3L);
    const auto everett = Created<EVERETT<double>>(SamplesOf<POINT<double>>(sine, Grid(0, 10, 16)), 8);
    const auto hermite = Created<LOCAL_HERMITE>(SamplesOf<DPOINT<double>>(sine, Grid(0, 10, 16)), -1, 6);
    const auto sum = [&] {
        double total = 0;
        for (double x = 0; x <= 150; x += 0.5) total += everett.Value(x) + hermite.SecondDerivative(x);
        return total;
    };
    const double expected = sum();
    std::vector<double> totals(4);
    std::vector<std::thread> threads;
    for (double& total : totals) threads.emplace_back([&] { total = sum(); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(totals, std::vector<double>(4, expected));
}

}  // namespace
