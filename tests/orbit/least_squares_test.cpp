// Fits, elimination and allocators.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <numeric>
#include <random>
#include <sstream>

#include "orbit/cheby_poly.h"
#include "orbit/gaussj.h"
#include "orbit/nr_allocators.h"
#include "orbit/polynom_fit.h"
#include "orbit/svdcmp.h"
#include "orbit/svdfit.h"
#include "tests/orbit/closed_forms.h"

namespace {

void ExpectNear(long double value, double expected, double tolerance) {
    EXPECT_NEAR(static_cast<double>(value), expected, tolerance);
}

template <class FIT>
class SvdFitTest : public testing::Test {};

template <class T_, template <class> class F_>
struct INSTANCE {
    using T = T_;
    using F = F_<T>;
};
using Instances = testing::Types<INSTANCE<float, POLYNOM_FUNCTION>, INSTANCE<double, POLYNOM_FUNCTION>,
                                 INSTANCE<long double, POLYNOM_FUNCTION>, INSTANCE<float, CHEBY_POLY_FUNCTION>,
                                 INSTANCE<double, CHEBY_POLY_FUNCTION>>;
TYPED_TEST_SUITE(SvdFitTest, Instances);

TYPED_TEST(SvdFitTest, QuadraticThroughThreePointsIsExact) {
    using T = typename TypeParam::T;
    const T x[] = {-1, T(0.5), 1};
    const T y[] = {4, 1, 2};  // 2 x^2 - x + 1
    const T sigma[] = {1, 1, 1};
    T a[3];
    SVDFIT<T, typename TypeParam::F> fit;
    const T chi_square = fit.Fit(x, y, sigma, a);
    const auto epsilon = static_cast<double>(std::numeric_limits<T>::epsilon());
    ExpectNear(chi_square, 0, 1000 * epsilon * epsilon);
    EXPECT_EQ(fit.DroppedCount(), 0);
    const bool monomials = std::is_same_v<typename TypeParam::F, POLYNOM_FUNCTION<T>>;
    ExpectNear(a[0], monomials ? 1 : 2, 50 * epsilon);  // 2 x^2 = T0 + T2
    ExpectNear(a[1], -1, 50 * epsilon);
    ExpectNear(a[2], monomials ? 2 : 1, 50 * epsilon);
}

TYPED_TEST(SvdFitTest, WeightsByOneOverSigma) {
    using T = typename TypeParam::T;
    // A constant through 1 +- 1, 4 +- 2: weighted mean (1 + 4 / 4) / (1 + 1 / 4) = 1.6; chi^2 = 0.36 + 1.44.
    const T x[] = {0, T(0.5)};
    const T y[] = {1, 4};
    const T sigma[] = {1, 2};
    T a[1];
    SVDFIT<T, typename TypeParam::F> fit;
    ExpectNear((fit.Fit(x, y, sigma, a)), 1.8, 1e-5);
    ExpectNear(a[0], 1.6, 1e-6);
}

TYPED_TEST(SvdFitTest, IdenticalAbscissaeGiveTheSolutionOfLeastNorm) {
    using T = typename TypeParam::T;
    // a0 + 0.5 a1 = 3 (mean of 2 and 4): least norm is along (1, 0.5), a = 3 / 1.25 (1, 0.5).
    const T x[] = {T(0.5), T(0.5)};
    const T y[] = {2, 4};
    const T sigma[] = {1, 1};
    T a[2];
    SVDFIT<T, typename TypeParam::F> fit;
    ExpectNear((fit.Fit(x, y, sigma, a)), 2, 1e-5);
    EXPECT_EQ(fit.DroppedCount(), 1);
    ExpectNear(a[0], 2.4, 1e-5);
    ExpectNear(a[1], 1.2, 1e-5);
}

TEST(SvdFit, RefitOfTheSameSizeKeepsItsArraysAndAnotherSizeWorks) {
    SVDFIT<long double, POLYNOM_FUNCTION<long double>> fit;
    std::mt19937 random(5);
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (const size_t count : {3u, 9u, 9u, 40u, 4u}) {
        SCOPED_TRACE(count);
        std::vector<long double> x(count), y(count), sigma(count, 1), a(3);
        for (size_t i = 0; i < count; ++i) {
            x[i] = uniform(random);
            y[i] = 3 - 2 * x[i] + 0.5L * x[i] * x[i];
        }
        EXPECT_LE((fit.Fit(x, y, sigma, a)), 1e-30L);
        ExpectNear(a[2], 0.5, 1e-14);
    }
}

/// Fits by Householder QR in long double: the yardstick. Returns the coefficients of u^0 .. u^order.
std::vector<long double> QrFit(const std::vector<long double>& u, std::vector<long double> b, int order) {
    const size_t m = u.size(), n = static_cast<size_t>(order) + 1;
    std::vector<std::vector<long double>> a(m, std::vector<long double>(n, 1));
    for (size_t i = 0; i < m; ++i)
        for (size_t j = 1; j < n; ++j) a[i][j] = a[i][j - 1] * u[i];
    for (size_t k = 0; k < n; ++k) {
        long double norm = 0;
        for (size_t i = k; i < m; ++i) norm += a[i][k] * a[i][k];
        norm = a[k][k] > 0 ? -std::sqrt(norm) : std::sqrt(norm);
        std::vector<long double> v(m, 0);
        for (size_t i = k; i < m; ++i) v[i] = a[i][k];
        v[k] -= norm;
        const long double vv = std::inner_product(v.begin(), v.end(), v.begin(), 0.0L);
        const auto reflect = [&](auto&& at) {
            long double product = 0;
            for (size_t i = k; i < m; ++i) product += v[i] * at(i);
            for (size_t i = k; i < m; ++i) at(i) -= 2 * product / vv * v[i];
        };
        for (size_t j = k; j < n; ++j) reflect([&](size_t i) -> long double& { return a[i][j]; });
        reflect([&](size_t i) -> long double& { return b[i]; });
    }
    std::vector<long double> c(n);
    for (size_t k = n; k-- > 0;) {
        c[k] = b[k];
        for (size_t j = k + 1; j < n; ++j) c[k] -= a[k][j] * c[j];
        c[k] /= a[k][k];
    }
    return c;
}

/// Holds both fits against the yardstick, at and between the points: position 1e-8 m, velocity 1e-9 m/s.
void ExpectFitsAsGoodAsQr(const ARRAY<POINT<double>>& points, int order) {
    std::vector<long double> u, y;
    const long double first = points.begin()->x, last = (points.end() - 1)->x;
    const long double centre = (first + last) / 2, half = (last - first) / 2;
    for (const POINT<double>& point : points) {
        u.push_back((point.x - centre) / half);
        y.push_back(point.y);
    }
    const CLOSED_FORM best = PolynomialOf(QrFit(u, y, order), centre, half);
    POLYNOM_FIT<double> fit;
    CHEBY_POLY<double> chebyshev;
    fit.Create(points, order, -1);
    chebyshev.Create(points, order, -1);
    for (double x = static_cast<double>(first); x <= static_cast<double>(last); x += 1.7) {
        EXPECT_NEAR(fit.Value(x), static_cast<double>(best.value(x)), 1e-8) << "at " << x;
        EXPECT_NEAR(fit.FirstDerivative(x), static_cast<double>(best.first(x)), 1e-9) << "at " << x;
        EXPECT_NEAR(chebyshev.Value(x), static_cast<double>(best.value(x)), 1e-8) << "at " << x;
        EXPECT_NEAR(chebyshev.FirstDerivative(x), static_cast<double>(best.first(x)), 1e-9) << "at " << x;
    }
}

TEST(Fits, AreAsGoodAsLongDoubleQrOnAClosedFormOrbit) {
    // A low Earth orbit's x: the orbit's motion times the Earth's turn.
    const CLOSED_FORM orbit{
        [](long double t) { return 7.07e6L * std::cos(1.06e-3L * t) * std::cos(7.292e-5L * t + 1); }, {}, {}};
    const ARRAY<POINT<double>> points = SamplesOf<POINT<double>>(orbit, Grid(46123.456789, 10, 20));
    for (const int order : {0, 3, 5, 7, 9, 11}) {
        SCOPED_TRACE(order);
        ExpectFitsAsGoodAsQr(points, order);
    }
}

/// A list of reals of a pool file.
std::vector<double> PoolList(const std::string& file, const std::string& key) {
    std::ifstream pool(file);
    std::vector<double> values;
    for (std::string line; std::getline(pool, line);) {
        if (line.rfind(key + " ", 0) != 0) continue;
        for (std::getline(pool, line); std::getline(pool, line) && line != "}";)
            values.push_back(std::strtod(line.c_str(), nullptr));
    }
    return values;
}

TEST(Fits, AreAsGoodAsLongDoubleQrOnARealOrbit) {
    const std::vector<double> positions =
        PoolList("/work/shared/scenes/pyrenees/master.pool", "state_vector_positions");
    if (positions.size() < 60) GTEST_SKIP() << "no real orbit at hand";
    for (size_t axis = 0; axis < 3; ++axis) {
        ARRAY<POINT<double>> points(0, 20);
        for (int i = 0; i < 20; ++i) points[i] = {46000 + 10.0 * i, positions[3 * static_cast<size_t>(i) + axis]};
        for (const int order : {5, 9}) {
            SCOPED_TRACE(testing::Message() << "axis " << axis << ", order " << order);
            ExpectFitsAsGoodAsQr(points, order);
        }
    }
}

TEST(Svdcmp, ReassemblesRandomMatricesOfAnyShape) {
    std::mt19937 random(77);
    std::uniform_real_distribution<double> uniform(-1, 1);
    const std::pair<int, int> shapes[] = {{1, 1}, {2, 2}, {7, 4}, {40, 12}, {3, 5}};
    for (const auto& [m, n] : shapes) {
        SCOPED_TRACE(testing::Message() << m << " x " << n);
        double** const a = NUMERICS::matrix<double>(1, m, 1, n);
        double** const u = NUMERICS::matrix<double>(1, m, 1, n);
        double** const v = NUMERICS::matrix<double>(1, n, 1, n);
        double* const w = NUMERICS::vector<double>(1, n);
        double* const work = NUMERICS::vector<double>(1, n);
        for (int i = 1; i <= m; ++i)
            for (int j = 1; j <= n; ++j)
                u[i][j] = a[i][j] = j == 3 ? 2 * a[i][1] : uniform(random);  // one dependent column
        NUMERICS::svdcmp(u, m, n, w, v, work);
        for (int i = 1; i <= m; ++i)
            for (int j = 1; j <= n; ++j) {
                double sum = 0;
                for (int k = 1; k <= n; ++k) sum += u[i][k] * w[k] * v[j][k];
                EXPECT_NEAR(sum, a[i][j], 1e-14);
            }
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j) {
                double product = 0;
                for (int k = 1; k <= n; ++k) product += v[k][i] * v[k][j];
                EXPECT_NEAR(product, i == j, 1e-14);
                EXPECT_GE(w[i], 0);
            }
        EXPECT_EQ(*std::min_element(w + 1, w + 1 + n) < 1e-14, n >= 3);
        NUMERICS::free_matrix(a, 1, m, 1, n);
        NUMERICS::free_matrix(u, 1, m, 1, n);
        NUMERICS::free_matrix(v, 1, n, 1, n);
        NUMERICS::free_vector(w, 1, n);
        NUMERICS::free_vector(work, 1, n);
    }
}

TEST(Gaussj, InvertsAndSolves) {
    // Pivots off the diagonal everywhere: a zero in front, and rows of different sizes.
    constexpr int n = 3;
    double rows[n * n] = {0, 2, 1, 4, 0, 0, 1, -1, 8};
    double right[n] = {7, 4, 23};  // solution 1, 2, 3
    const std::vector<double> original(rows, rows + n * n);
    double** const a = NUMERICS::convert_matrix(rows, 1, n, 1, n);
    double** const b = NUMERICS::convert_matrix(right, 1, n, 1, 1);
    NUMERICS::gaussj(a, n, b, 1);
    for (int i = 0; i < n; ++i) {
        EXPECT_NEAR(right[i], i + 1, 1e-14);
        for (int j = 0; j < n; ++j) {
            double product = 0;
            for (int k = 0; k < n; ++k) product += rows[i * n + k] * original[static_cast<size_t>(k * n + j)];
            EXPECT_NEAR(product, i == j, 1e-14) << i << ", " << j;
        }
    }
    NUMERICS::free_convert_matrix(a, 1, n, 1, n);
    NUMERICS::free_convert_matrix(b, 1, n, 1, 1);
}

std::string ErrorText(const std::string& message) {
    return "Numerical Recipes run-time error...\n" + message + "\n...now exiting to system...\n";
}

TEST(NumericsHardStop, NamesTheReasonAndExitsWithOne) {
    const auto expect = [](auto call, const std::string& message) {
        EXPECT_EXIT(call(), testing::ExitedWithCode(1), testing::Eq(ErrorText(message)));
    };
    const auto eliminate = [](double value) {
        double** const a = NUMERICS::matrix<double>(1, 2, 1, 2);
        a[1][1] = value;
        NUMERICS::gaussj(a, 2, a, 0);
    };
    expect([&] { eliminate(1); }, "gaussj: Singular Matrix-2");
    expect(
        [] {
            double nan[4] = {std::nan(""), std::nan(""), std::nan(""), std::nan("")};
            double** const a = NUMERICS::convert_matrix(nan, 1, 2, 1, 2);
            NUMERICS::gaussj(a, 2, a, 0);
        },
        "gaussj: Singular Matrix-1");
    constexpr long kHuge = 1L << 62;  // refused before the allocator, which a sanitizer would end the run for
    expect([] { NUMERICS::vector<float>(1, kHuge); }, "allocation failure in vector()");
    expect([] { NUMERICS::ivector(1, kHuge); }, "allocation failure in ivector()");
    expect([] { NUMERICS::cvector(5, -5); }, "allocation failure in cvector()");
    expect([] { NUMERICS::lvector(1, kHuge); }, "allocation failure in lvector()");
    expect([] { NUMERICS::dvector(-kHuge, kHuge); }, "allocation failure in dvector()");
    expect([] { NUMERICS::matrix<double>(1, kHuge, 1, 1); }, "allocation failure 1 in matrix()");
    expect([] { NUMERICS::matrix<double>(1, 10, 1, kHuge); }, "allocation failure 2 in matrix()");
    expect([] { NUMERICS::submatrix<double>(nullptr, 1, kHuge, 1, 1, 1, 1); }, "allocation failure in submatrix()");
    expect([] { NUMERICS::convert_matrix<double>(nullptr, 1, kHuge, 1, 1); }, "allocation failure in convert_matrix()");
    expect([] { NUMERICS::f3tensor<double>(1, kHuge, 1, 1, 1, 1); }, "allocation failure 1 in f3tensor()");
    expect([] { NUMERICS::f3tensor<double>(1, 2, 1, kHuge, 1, 1); }, "allocation failure 2 in f3tensor()");
    expect([] { NUMERICS::f3tensor<double>(1, 2, 1, 2, 1, kHuge); }, "allocation failure 3 in f3tensor()");
}

TEST(NumericsAllocators, AddressTheirRangesAndShareElements) {
    int* const i = NUMERICS::ivector(5, 7);
    std::iota(i + 5, i + 8, 50);
    EXPECT_EQ(i[7], 52);
    NUMERICS::free_ivector(i, 5, 7);
    unsigned char* const c = NUMERICS::cvector(-3, -1);
    c[-3] = c[-1] = 9;
    NUMERICS::free_cvector(c, -3, -1);
    unsigned long* const l = NUMERICS::lvector(1, 0);  // empty
    NUMERICS::free_lvector(l, 1, 0);
    double* const d = NUMERICS::dvector(1, 2);
    d[0] = d[1] = d[2] = 3;  // the element of slack before the range
    NUMERICS::free_dvector(d, 1, 2);

    double** const m = NUMERICS::matrix<double>(2, 4, -1, 1);
    for (int row = 2; row <= 4; ++row)
        for (int column = -1; column <= 1; ++column) m[row][column] = 10 * row + column;
    EXPECT_EQ(&m[4][1] - &m[2][-1], 8) << "one block of rows";
    double** const part = NUMERICS::submatrix(m, 3, 4, 0, 1, 1, 1);
    EXPECT_EQ(part[1][1], 30);
    EXPECT_EQ(part[2][2], 41);
    NUMERICS::free_submatrix(part, 1, 2, 1, 2);
    NUMERICS::free_matrix(m, 2, 4, -1, 1);

    float*** const t = NUMERICS::f3tensor<float>(1, 2, 0, 2, 5, 8);
    float count = 0;
    for (int row = 1; row <= 2; ++row)
        for (int column = 0; column <= 2; ++column)
            for (int depth = 5; depth <= 8; ++depth) t[row][column][depth] = count++;
    EXPECT_EQ(&t[2][2][8] - &t[1][0][5], 23);
    EXPECT_EQ(t[2][2][8], 23);
    NUMERICS::free_f3tensor(t, 1, 2, 0, 2, 5, 8);
}

}  // namespace
