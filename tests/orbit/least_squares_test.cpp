// Fits, elimination and allocators.

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <random>
#include <valarray>

#include "orbit/fit/gaussj.h"
#include "orbit/fit/nr_allocators.h"
#include "orbit/fit/svdcmp.h"
#include "orbit/fit/svdfit.h"
#include "orbit/interpolation/cheby_poly.h"
#include "orbit/interpolation/polynom_fit.h"
#include "tests/orbit/closed_forms.h"

namespace {

/// a = U diag(w) V^T with orthonormal columns in V, and in U where w is not zero; a's column `zero` is made 0, its
/// column `twice` another one doubled (0: none).
template <class T>
void CheckDecomposition(int m, int n, int zero, int twice) {
    SCOPED_TRACE(testing::Message() << m << " x " << n << ", " << zero << ", " << twice << ", " << sizeof(T));
    std::mt19937 random(static_cast<unsigned>(100 * m + 10 * n + zero));
    std::uniform_real_distribution<T> element(-1, 1);
    T** const a = NUMERICS::matrix<T>(1, m, 1, n);
    T** const u = NUMERICS::matrix<T>(1, m, 1, n);
    T** const v = NUMERICS::matrix<T>(1, n, 1, n);
    std::vector<T> w(static_cast<size_t>(n) + 1), work(w), x(w), b(static_cast<size_t>(m) + 1);
    for (int i = 1; i <= m; ++i) {
        for (int j = 1; j <= n; ++j) {
            a[i][j] = j == zero ? T{0} : j == twice ? 2 * a[i][1] : element(random);
            u[i][j] = a[i][j];
        }
    }
    NUMERICS::svdcmp(u, m, n, w.data(), v, work.data());
    const T epsilon = 30 * std::numeric_limits<T>::epsilon();
    for (int j = 1; j <= n; ++j) {
        EXPECT_GE(w[j], 0);
        if (w[j] < epsilon) w[j] = 0;
    }
    const int rank = static_cast<int>(std::count_if(w.begin(), w.end(), [](T value) { return value > 0; }));
    EXPECT_EQ(rank, std::min(m, n - (zero > 0 ? 1 : 0) - (twice > 0 ? 1 : 0)));
    const auto product = [](int count, const auto& term) {
        T sum = 0;
        for (int k = 1; k <= count; ++k) sum += term(k);
        return sum;
    };
    for (int i = 1; i <= m; ++i) {
        for (int j = 1; j <= n; ++j)
            EXPECT_LE(std::fabs(product(n, [&](int k) { return u[i][k] * w[k] * v[j][k]; }) - a[i][j]), epsilon) << i;
    }
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) {
            EXPECT_LE(std::fabs(product(n, [&](int k) { return v[k][i] * v[k][j]; }) - (i == j)), epsilon);
            if (w[i] == 0 || w[j] == 0) continue;
            EXPECT_LE(std::fabs(product(m, [&](int k) { return u[k][i] * u[k][j]; }) - (i == j)), epsilon);
        }
    }
    // Least squares: what is left of b stands at a right angle to every column.
    for (int i = 1; i <= m; ++i) b[i] = element(random);
    NUMERICS::svbksb(u, w.data(), v, m, n, b.data(), x.data(), work.data());
    for (int i = 1; i <= m; ++i) b[i] -= product(n, [&](int j) { return a[i][j] * x[j]; });
    for (int j = 1; j <= n; ++j) EXPECT_LE(std::fabs(product(m, [&](int i) { return a[i][j] * b[i]; })), 100 * epsilon);
    NUMERICS::free_matrix(a, 1, m, 1, n);
    NUMERICS::free_matrix(u, 1, m, 1, n);
    NUMERICS::free_matrix(v, 1, n, 1, n);
}

TEST(Svdcmp, DecomposesAndSolvesForAnyShapeAndRank) {
    constexpr int kShapes[][4] = {{8, 5, 0, 0}, {5, 5, 0, 0}, {3, 5, 0, 0}, {1, 1, 0, 0}, {4, 1, 0, 0}, {1, 3, 0, 0},
                                  {7, 4, 1, 0}, {7, 4, 4, 0}, {7, 4, 2, 0}, {7, 5, 0, 3}, {9, 6, 3, 6}, {12, 10, 0, 0}};
    for (const auto& [m, n, zero, twice] : kShapes) {
        CheckDecomposition<float>(m, n, zero, twice);
        CheckDecomposition<double>(m, n, zero, twice);
        CheckDecomposition<long double>(m, n, zero, twice);
    }
}

template <class T, template <class> class F>
void CheckSvdFit(std::vector<double> expected_of_quadratic) {
    SVDFIT<T, F<T>> fit;  // one object for all sizes
    const auto epsilon = static_cast<double>(std::numeric_limits<T>::epsilon());
    const auto check = [&](std::vector<T> x, std::vector<T> y, std::vector<T> sigma, double chi_square, int dropped,
                           const std::vector<double>& expected) {
        std::vector<T> a(expected.size());
        EXPECT_NEAR(static_cast<double>(fit.Fit(x, y, sigma, a)), chi_square, 100 * epsilon);
        EXPECT_EQ(fit.DroppedCount(), dropped);
        for (size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(static_cast<double>(a[i]), expected[i], 50 * epsilon) << i;
    };
    const T half = T(0.5);
    check({-1, half, 1}, {4, 1, 2}, {1, 1, 1}, 0, 0, expected_of_quadratic);  // 2 x^2 - x + 1
    // A constant through 1 +- 1, 4 +- 2: weighted mean (1 + 4 / 4) / (1 + 1 / 4) = 1.6; chi^2 = 0.36 + 1.44.
    check({0, half}, {1, 4}, {1, 2}, 1.8, 0, {1.6});
    // One abscissa: a0 + 0.5 a1 = 3 (mean of 2 and 4): least norm is along (1, 0.5), a = 3 / 1.25 (1, 0.5).
    check({half, half}, {2, 4}, {1, 1}, 2, 1, {2.4, 1.2});
    check({0, 0}, {2, 4}, {1, 1}, 2, 1, {3, 0});  // a column of zeros
}

TEST(SvdFit, GivesClosedFormsWeightsAndTheLeastNorm) {
    CheckSvdFit<float, POLYNOM_FUNCTION>({1, -1, 2});
    CheckSvdFit<double, POLYNOM_FUNCTION>({1, -1, 2});
    CheckSvdFit<float, CHEBY_POLY_FUNCTION>({2, -1, 1});  // 2 x^2 = T0 + T2
    CheckSvdFit<double, CHEBY_POLY_FUNCTION>({2, -1, 1});
}

using REALS = std::valarray<long double>;
using PLAIN = INTERPOLATION<double, POINT<double>>;

/// Value and slope at u[0] of the polynomial that fits y best at the other u, by polynomials that stand at right angles
/// to each other on these points (Forsythe 1957), in long double: the yardstick.
std::array<long double, 2> BestFit(const REALS& u, const REALS& y, int order) {
    REALS weight(1, u.size()), p(1, u.size()), p_before(u.size()), slope(u.size()), slope_before(u.size());
    weight[0] = 0;
    long double value = 0, derivative = 0, square_before = 1;
    for (int k = 0; k <= order; ++k) {
        const long double square = (weight * p * p).sum(), c = (weight * p * y).sum() / square;
        value += c * p[0];
        derivative += c * slope[0];
        const REALS turned = u - (weight * u * p * p).sum() / square;
        const REALS next = turned * p - square / square_before * p_before;
        const REALS next_slope = p + turned * slope - square / square_before * slope_before;
        std::tie(p_before, slope_before, p, slope) = std::tuple(p, slope, next, next_slope);
        square_before = square;
    }
    return {value, derivative};
}

/// At and between the points: position within 1e-8 m, velocity within 1e-9 m/s of the yardstick.
TEST(Fits, AreAsGoodAsLongDoubleOnAClosedFormOrbit) {
    // A low Earth orbit's x: the orbit's motion times the Earth's turn.
    const CLOSED_FORM orbit{
        [](long double t) { return 7.07e6L * std::cos(1.06e-3L * t) * std::cos(7.292e-5L * t + 1); }, {}, {}};
    const ARRAY<POINT<double>> points = SamplesOf<POINT<double>>(orbit, Grid(46123.456789, 10, 20));
    const long double centre = 46123.456789L + 95, half = 95;
    REALS u(21), y(21);
    for (size_t i = 1; i <= 20; ++i) {
        u[i] = (points[static_cast<int>(i) - 1].x - centre) / half;
        y[i] = points[static_cast<int>(i) - 1].y;
    }
    for (const int order : {0, 5, 9, 11}) {
        const auto fit = Created<POLYNOM_FIT<double>>(points, order);
        const auto chebyshev = Created<CHEBY_POLY<double>>(points, order);
        for (double x = points[0].x; x <= points[19].x; x += 1.7) {
            SCOPED_TRACE(testing::Message() << "order " << order << " at " << x);
            u[0] = (x - centre) / half;
            const auto [value, slope] = BestFit(u, y, order);
            for (const PLAIN* one : std::initializer_list<const PLAIN*>{&fit, &chebyshev}) {
                EXPECT_NEAR(one->Value(x), static_cast<double>(value), 1e-8);
                EXPECT_NEAR(one->FirstDerivative(x), static_cast<double>(slope / half), 1e-9);
            }
        }
    }
}

TEST(Gaussj, InvertsAndSolves) {
    // Pivots off the diagonal everywhere: a zero in front, and rows of different sizes.
    double rows[] = {0, 2, 1, 4, 0, 0, 1, -1, 8};
    double right[] = {7, 4, 23};  // solution 1, 2, 3
    const double inverse[] = {0, 0.25, 0, 32 / 68.0, 1 / 68.0, -4 / 68.0, 4 / 68.0, -2 / 68.0, 8 / 68.0};
    double** const a = NUMERICS::convert_matrix(rows, 1, 3, 1, 3);
    double** const b = NUMERICS::convert_matrix(right, 1, 3, 1, 1);
    NUMERICS::gaussj(a, 3, b, 1);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(right[i], i + 1, 1e-14);
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(rows[i], inverse[i], 1e-15) << i;
    NUMERICS::free_convert_matrix(a, 1, 3, 1, 3);
    NUMERICS::free_convert_matrix(b, 1, 3, 1, 1);
}

TEST(NumericsHardStop, NamesTheReasonAndExitsWithOne) {
    const auto expect = [](auto call, const std::string& message) {
        const std::string text = "Numerical Recipes run-time error...\n" + message + "\n...now exiting to system...\n";
        EXPECT_EXIT(call(), testing::ExitedWithCode(1), testing::Eq(text));
    };
    const auto eliminate = [](double first, double rest) {
        double values[] = {first, rest, rest, rest};
        NUMERICS::gaussj(NUMERICS::convert_matrix(values, 1, 2, 1, 2), 2, static_cast<double**>(nullptr), 0);
    };
    expect([&] { eliminate(1, 0); }, "gaussj: Singular Matrix-2");
    expect([&] { eliminate(std::nan(""), std::nan("")); }, "gaussj: Singular Matrix-1");
    constexpr long kHuge = 1L << 62;  // refused before the allocator, which a sanitizer would end the run for
    double** const none = nullptr;
    const std::pair<const char*, std::function<void()>> too_large[] = {
        {"vector()", [] { NUMERICS::vector<float>(1, kHuge); }},
        {"vector()", [] { NUMERICS::vector<double>(2, 0); }},  // less than no elements
        {"vector()", [] { NUMERICS::vector<double>(-kHuge, 2 * (kHuge - 1)); }},
        {"ivector()", [] { NUMERICS::ivector(1, kHuge); }},
        {"cvector()", [] { NUMERICS::cvector(-kHuge, kHuge - 2); }},
        {"lvector()", [] { NUMERICS::lvector(1, kHuge); }},
        {"dvector()", [] { NUMERICS::dvector(1, kHuge); }},
        {"submatrix()", [=] { NUMERICS::submatrix(none, 1, kHuge, 1, 1, 1, 1); }},
        {"convert_matrix()", [] { NUMERICS::convert_matrix(static_cast<double*>(nullptr), 1, kHuge, 1, 1); }},
    };
    for (const auto& [name, call] : too_large) expect(call, std::string("allocation failure in ") + name);
    const std::pair<const char*, std::function<void()>> too_large_parts[] = {
        {"1 in matrix()", [] { NUMERICS::matrix<double>(1, kHuge, 1, 1); }},
        {"2 in matrix()", [] { NUMERICS::matrix<double>(1, 10, 1, kHuge); }},
        {"2 in matrix()", [] { NUMERICS::matrix<double>(1, 10, 2, 0); }},
        {"2 in matrix()", [] { NUMERICS::matrix<double>(1, 0, 2, 0); }},
        {"1 in f3tensor()", [] { NUMERICS::f3tensor<double>(1, kHuge, 1, 1, 1, 1); }},
        {"2 in f3tensor()", [] { NUMERICS::f3tensor<double>(1, 10, 1, kHuge, 1, 1); }},
        {"3 in f3tensor()", [] { NUMERICS::f3tensor<double>(1, 10, 1, 10, 1, kHuge); }},
    };
    for (const auto& [name, call] : too_large_parts) expect(call, std::string("allocation failure ") + name);
}

template <class T>
void CheckVector(T* (*allocate)(long, long), void (*release)(T*, long, long)) {
    T* const v = allocate(-2, 3);
    for (int i = -2; i <= 3; ++i) EXPECT_EQ(v[i], T{0}) << i;
    v[-2] = v[3] = T{7};
    release(v, -2, 3);
    release(allocate(5, 4), 5, 4);  // no elements
    release(nullptr, 1, 2);
}

TEST(NumericsAllocators, AddressTheirRangesAndShareElements) {
    CheckVector(NUMERICS::vector<float>, NUMERICS::free_vector<float>);
    CheckVector(NUMERICS::ivector, NUMERICS::free_ivector);
    CheckVector(NUMERICS::cvector, NUMERICS::free_cvector);
    CheckVector(NUMERICS::lvector, NUMERICS::free_lvector);
    CheckVector(NUMERICS::dvector, NUMERICS::free_dvector);
    NUMERICS::free_matrix(NUMERICS::matrix<double>(1, 0, 1, 3), 1, 0, 1, 3);
    NUMERICS::free_matrix<double>(nullptr, 1, 2, 1, 2);
    NUMERICS::free_f3tensor<double>(nullptr, 1, 2, 1, 2, 1, 2);
    double** const m = NUMERICS::matrix<double>(2, 4, -1, 1);
    for (int row = 2; row <= 4; ++row)
        for (int column = -1; column <= 1; ++column) m[row][column] = 10 * row + column;
    EXPECT_EQ(&m[4][1] - &m[2][-1], 8) << "one block of rows";
    double** const part = NUMERICS::submatrix(m, 3, 4, 0, 1, 1, 1);
    EXPECT_EQ(part[1][1], 30);
    EXPECT_EQ(part[2][2], 41);
    NUMERICS::free_submatrix(part, 1, 2, 1, 2);
    NUMERICS::free_matrix(m, 2, 4, -1, 1);
    double*** const t = NUMERICS::f3tensor<double>(1, 2, -1, 1, 5, 8);
    t[2][1][8] = 7.0;
    EXPECT_EQ(&t[2][1][8] - &t[1][-1][5], 23) << "one block of rows of columns";
    EXPECT_EQ((&t[1][-1][5])[23], 7.0);
    NUMERICS::free_f3tensor(t, 1, 2, -1, 1, 5, 8);
}

}  // namespace
