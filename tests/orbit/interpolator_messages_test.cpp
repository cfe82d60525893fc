// What the interpolators log, refuse, and end the process for.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <limits>
#include <sstream>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/everett.h"
#include "orbit/local_interpolation.h"
#include "orbit/spline.h"
#include "tests/orbit/closed_forms.h"

namespace {

using testing::HasSubstr;
using testing::Not;

template <class CALL>
std::string Logged(CALL call) {
    Log().SetScreenThreshold(2);
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

std::string LogOfRefusal(const std::function<void()>& call) {
    return Logged([&] { EXPECT_THROW(call(), ERROR_ARGUMENT); });
}

const CLOSED_FORM kSine = SineOf(7e6L, 1e-3L);
ARRAY<POINT<double>> Points(const std::vector<double>& x) {
    return SamplesOf<POINT<double>>(kSine, x);
}
ARRAY<DPOINT<double>> Slopes(const std::vector<double>& x) {
    return SamplesOf<DPOINT<double>>(kSine, x);
}
const std::vector<double> kGrid = Grid(100, 10, 12);

using LOCAL_FIT = LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
using LOCAL_POLYNOM = LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;

TEST(InterpolatorLog, FitsTellTheirOrderTheirChiSquareAndALoweredOrder) {
    const std::string polyfit = Logged([] { POLYNOM_FIT<double>().Create(Points(kGrid), 3, -1); });
    EXPECT_THAT(polyfit, HasSubstr("INFO  : global : POLYFIT: polynomial fit order = 3\n"));
    EXPECT_THAT(polyfit, HasSubstr("INFO  : global : POLYFIT: chi^2 = "));
    EXPECT_THAT(polyfit, Not(HasSubstr("reduce")));
    EXPECT_THAT(Logged([] {
                    POLYNOM_FIT<double>().Create(Points({0, 1, 2}), 3, -1);
                }),
                HasSubstr("WARN  : global : POLYFIT: reduce polynomial fit order 3 -> 2\n"));
    EXPECT_THAT(Logged([] { POLYNOM_FIT<double>().Create(Points({0, 1, 2}), 2, -1); }), Not(HasSubstr("reduce")));
    const std::string chebyshev = Logged([] { CHEBY_POLY<double>().Create(Points({0, 1, 2}), 9, -1); });
    EXPECT_THAT(chebyshev, HasSubstr("WARN  : global : CHEBY_POLY::Create: reduce polynomial fit order 9 -> 2\n"));
    EXPECT_THAT(chebyshev, HasSubstr("INFO  : global : CHEBY_POLY::Create: chi^2 = "));

    POLYNOM_FIT<double> kept;
    Logged([&] { kept.Create(Points({0, 1, 2}), 9, -1); });
    EXPECT_THAT(Logged([&] { kept.Create(Points(kGrid)); }), HasSubstr("fit order = 2\n")) << "the lowered order stays";
}

size_t Count(const std::string& text, const std::string& what) {
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
}

TEST(InterpolatorLog, DroppedSingularValuesAreToldOnceAndOnlyWhenThereAreAny) {
    const std::vector<double> many = Grid(0, 10, 40);
    const std::string dropped = Logged([&] { POLYNOM_FIT<double>().Create(Points(many), 17, -1); });
    EXPECT_EQ(Count(dropped, "of 18 singular values lie below 1e-5 of the largest and were dropped"), 1u) << dropped;
    EXPECT_THAT(dropped, HasSubstr("choose a lower order"));
    EXPECT_THAT(Logged([&] { POLYNOM_FIT<double>().Create(Points(many), 11, -1); }), Not(HasSubstr("dropped")));
    EXPECT_THAT(Logged([&] { CHEBY_POLY<double>().Create(Points(many), 17, -1); }), Not(HasSubstr("dropped")));
    EXPECT_EQ(Count(Logged([&] { LOCAL_FIT().Create(Points(many), 17, 30); }), "dropped"), 1u) << "once for all pieces";
}

TEST(InterpolatorLog, LocalInterpolationListsItsPieces) {
    const std::string log = Logged([] { LOCAL_POLYNOM().Create(SamplesOf<POINT<double>>(kSine, kGrid, 3), -1, 11); });
    EXPECT_EQ(log,
              "PARAM : global : LOCAL_INTERPOLATION: polynom count; 2\n"
              "PARAM : global : idx_start=3 idx_stop=13 t_start=100 t_stop=155\n"
              "PARAM : global : idx_start=4 idx_stop=14 t_start=155 t_stop=210\n");
    EXPECT_THAT(Logged([] {
                    LOCAL_POLYNOM().Create(Points({0, 1, 2}), -1, 5);
                }),
                HasSubstr("LOCAL_INTERPOLATION: change support_point_count from 5 to 3\n"));
    EXPECT_THAT(Logged([] { LOCAL_FIT().Create(Points(kGrid), 9, 5); }),
                HasSubstr("reduce polynomial fit order 9 -> 4\n"));
    EXPECT_EQ(Count(Logged([] { LOCAL_FIT().Create(Points(kGrid), 9, 5); }), "reduce"), 1u);
    EXPECT_THAT(Logged([] {
                    HERMITE_POLY<double>().Create(Slopes({0, 1, 2}), -1, 5);
                }),
                HasSubstr("HERMITE_POLY::Create: change node count from 5 to 3\n"));
}

TEST(InterpolatorLog, OnlyTheClassesWithCoefficientsGiveAny) {
    HERMITE_POLY<double> hermite;
    EXPECT_EQ(Logged([&] { EXPECT_EQ(hermite.GetCoeffs().Count(), 0); }),
              "INFO  : global : INTERPOLATION::GetCoeffs() shall not be called\n");
    EXPECT_THAT(Logged([&] { EXPECT_EQ(SPLINE<double>().GetCoeffs().Count(), 0); }),
                HasSubstr("WARN  : global : SPLINE::GetCoeffs() makes no sense\n"));
    // 2 + 3 (x - 1) + 0.5 (x - 1)(x - 2): divided differences in the order of the points
    POLYNOM<double> polynom;
    polynom.Create(SamplesOf<POINT<double>>(PolynomialOf({0, 1.5L, 0.5L}, 0, 1), {1, 2, 4}));
    const ARRAY<double> newton = polynom.GetCoeffs();
    ASSERT_EQ(newton.Count(), 3);
    EXPECT_EQ(std::vector<double>(newton.begin(), newton.end()), (std::vector<double>{2, 3, 0.5}));
    // u = (x - 5) / 2 over 3..7
    const std::vector<double> x = {3, 4, 5, 6, 7};
    POLYNOM_FIT<double> fit;
    CHEBY_POLY<double> chebyshev;
    Logged([&] { fit.Create(SamplesOf<POINT<double>>(PolynomialOf({1, 2, 6}, 5, 2), x), 2, -1); });
    Logged([&] { chebyshev.Create(SamplesOf<POINT<double>>(PolynomialOf({1, 2, 6}, 5, 2), x), 2, -1); });
    EXPECT_EQ(fit.Scale().centre, 5);
    EXPECT_EQ(fit.Scale().half_width, 2);
    EXPECT_EQ(chebyshev.MapAbscissa(7), 1);
    const double monomials[] = {1, 2, 6};
    const double chebyshevs[] = {4, 2, 3};  // 6 u^2 = 3 T0 + 3 T2
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(fit.GetCoeffs()[i], monomials[i], 1e-14);
        EXPECT_NEAR(chebyshev.GetCoeffs()[i], chebyshevs[i], 1e-14);
    }
}

TEST(Everett, RefusesWhatItCanNotInterpolate) {
    std::vector<double> uneven = kGrid;
    uneven[7] += 1.1e-7;  // the tolerance is 1e-8 of the step of 10
    std::vector<double> nearly = kGrid;
    nearly[7] += 0.9e-7;
    struct CASE {
        std::vector<double> x;
        int order;
        const char* text;
    };
    const CASE cases[] = {
        {{1}, 0, "ALARM : global : EVERETT::Create: more than 1 value needed.\n"},
        {kGrid, 3,
         "ALARM : global : EVERETT::Create: Everett interpolation only possible with even order, not for given order "
         "3\n"},
        {uneven, 2, "ALARM : global : EVERETT::Create: Everett interpolation only possible on equidistant grid.\n"},
        {Grid(0, 10, 4), 4, "EVERETT::Create: order 4 needs at least 5 support points, not 4"},
        {kGrid, -2, "EVERETT::Create: the order -2 is outside 0..128"},
    };
    for (const CASE& one : cases) {
        EXPECT_THAT(LogOfRefusal([&] { EVERETT<double>().Create(Points(one.x), one.order, -1); }), HasSubstr(one.text));
    }
    EVERETT<double>().Create(Points(nearly), 2, -1);
    EVERETT<double>().Create(Points({0, 10, 20}), 0, -1);
    EVERETT<double>().Create(Points({0, 10, 20}), 2, -1);
    EVERETT<double>().Create(Points({0, 17}), 0, -1);
}

TEST(Everett, ForcesTheOuterCellsInwardsAndSaysSoALimitedNumberOfTimes) {
    EVERETT<double> everett;
    everett.Create(Points(kGrid), 4, -1);  // cells 2 .. 9 of points 0 .. 11
    struct CASE {
        double x;
        int index;
        double p;
        const char* text;
    };
    const CASE cases[] = {
        {120, 2, 0, ""},
        {155, 5, 0.5, ""},
        {199.9, 9, 0.99, ""},
        {119, 2, -0.1, "WARN  : global : EVERETT::GetXi: Forced interpolation left hand side.\n"},
        {200, 9, 1, "WARN  : global : EVERETT::GetXi: Forced interpolation right hand side.\n"},
        {95, 2, -2.5, "DEBUG : global : EVERETT::GetXi: Extrapolation needed (r=-0.5 p=-2.5 q=3.5)\n"},
        {215, 9, 2.5, "DEBUG : global : EVERETT::GetXi: Extrapolation needed (r=11.5 p=2.5 q=-1.5)\n"},
    };
    for (const CASE& one : cases) {
        SCOPED_TRACE(one.x);
        EVERETT<double>::CELL cell{};
        const std::string log = Logged([&] { cell = everett.GetXi(one.x); });
        EXPECT_EQ(cell.index, one.index);
        EXPECT_NEAR(cell.p, one.p, 1e-12);
        EXPECT_EQ(cell.q, 1 - cell.p);
        EXPECT_EQ(log.empty(), *one.text == '\0');
        EXPECT_THAT(log, HasSubstr(one.text));
    }
    const EVERETT<double> copy = everett;
    const std::string log = Logged([&] {
        for (int i = 0; i < 1000; ++i) copy.Value(101);
    });
    EXPECT_EQ(Count(log, "Forced interpolation left hand side."), 10u);
    EXPECT_EQ(Count(log, "WARN  : global : EVERETT::GetXi: no further lines of this kind from this axis"), 1u);
}

TEST(Interpolators, RefuseBadSupportPointsAndParameters) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const std::vector<double>& x :
         std::vector<std::vector<double>>{{}, {0, 2, 1}, {0, 1, 1}, {0, kNan, 2}, {0, 1e99}}) {
        ARRAY<POINT<double>> points(0, static_cast<int>(x.size()));
        for (int i = 0; i < points.Count(); ++i) points[i] = {x[static_cast<size_t>(i)], 1};
        SCOPED_TRACE(testing::PrintToString(x));
        EXPECT_THAT(LogOfRefusal([&] { POLYNOM<double>().Create(points); }),
                    HasSubstr("ALARM : global : POLYNOM::Create: "));
        EXPECT_THAT(LogOfRefusal([&] { SPLINE<double>().Create(points); }),
                    HasSubstr("ALARM : global : SPLINE::Create: "));
        EXPECT_THROW(LOCAL_POLYNOM().Create(points), ERROR_ARGUMENT);
    }
    ARRAY<POINT<double>> infinite = Points({1, 2, 3});
    infinite[1].y = kInfinity;
    EXPECT_THAT(LogOfRefusal([&] { POLYNOM_FIT<double>().Create(infinite); }),
                HasSubstr("POLYNOM_FIT::Create: the ordinate of support point 1, inf, is out of range"));
    infinite[1].y = kNan;
    EXPECT_THROW(CHEBY_POLY<double>().Create(infinite), ERROR_ARGUMENT);
    EXPECT_THAT(LogOfRefusal([] { SPLINE<double>().Create(Points({1})); }), HasSubstr("more than 1 value needed."));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM<double>().Create(Points(Grid(0, 10, 257))); }),
                HasSubstr("257 support points are too many for one polynomial (at most 256); a local interpolation"));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM<double>().Create(Points({0, 1e-9, 10})); }), HasSubstr("too close"));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM_FIT<double>().SetOrder(-2); }),
                HasSubstr("the fit order -2 is outside 0..128"));
    EXPECT_THROW(LOCAL_FIT().SetOrder(129), ERROR_ARGUMENT);
    EXPECT_THROW(HERMITE_POLY<double>().SetSupportPointCount(0), ERROR_ARGUMENT);
    EXPECT_THROW(LOCAL_POLYNOM().SetSupportPointCount(-7), ERROR_ARGUMENT);
}

/// Queries that would overflow end in a message, never in a trap.
TEST(Interpolators, RefuseQueriesThatWouldOverflow) {
    POLYNOM<double> polynom;
    POLYNOM_FIT<double> fit;
    CHEBY_POLY<double> chebyshev;
    SPLINE<double> spline;
    EVERETT<double> everett;
    LOCAL_POLYNOM local;
    const ARRAY<POINT<double>> points = Points(kGrid);
    for (INTERPOLATION<double, POINT<double>>* one : std::initializer_list<INTERPOLATION<double, POINT<double>>*>{
             &polynom, &fit, &chebyshev, &spline, &everett, &local}) {
        one->Create(points, 8, 8);
        for (const double x : {1e6, -1e9, 1e15}) one->Value(x);
        for (const double x : {1e299, -1e308, std::numeric_limits<double>::quiet_NaN()})
            EXPECT_THAT(LogOfRefusal([&] { one->Value(x); }),
                        HasSubstr("so far outside the data that its result would overflow"));
    }
    POLYNOM_FIT<float> narrow;
    narrow.Create(SamplesOf<POINT<float>>(kSine, Grid(0, 1, 12)), 8, -1);
    EXPECT_THAT(LogOfRefusal([&] { narrow.Value(1e8F); }), HasSubstr("does not fit the type float"));
}

TEST(Interpolators, RefuseQueriesBeforeASuccessfulCreate) {
    const auto check = [](auto interpolation, const auto& points, auto bad) {
        const char* const kText = "a query at 0 before there are support points";
        EXPECT_THAT(LogOfRefusal([&] { interpolation.Value(0); }), HasSubstr(kText));
        interpolation.Create(points, 2, 2);
        bad[1].x = bad[0].x;
        EXPECT_THROW(interpolation.Create(bad), ERROR_ARGUMENT);
        EXPECT_THAT(LogOfRefusal([&] { interpolation.Value(0); }), HasSubstr(kText));
    };
    const ARRAY<POINT<double>> points = Points(Grid(-50, 10, 12));
    check(POLYNOM<double>(), points, points);
    check(SPLINE<double>(), points, points);
    check(EVERETT<double>(), points, points);
    check(LOCAL_POLYNOM(), points, points);
    check(HERMITE_POLY<double>(), Slopes(Grid(-50, 10, 12)), Slopes(Grid(-50, 10, 12)));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM_FIT<double>().Value(0); }), HasSubstr("before there are support points"));
    EXPECT_THAT(LogOfRefusal([] { CHEBY_POLY<double>().Value(0); }), HasSubstr("before there are support points"));
}

/// Runs in the child of a death test: its log goes to a file, which the parent reads.
template <class CALL>
void WithLogIn(const std::string& file, CALL call) {
    Log().SetLogFile(file);
    call();
}

class HermiteHardStop : public testing::TestWithParam<bool> {};

TEST_P(HermiteHardStop, EndsTheProcessOutsideTheDataAndForNan) {
    const std::string file = "/tmp/hermite_hard_stop." + std::to_string(getpid());
    const auto stops = [&](ARRAY<DPOINT<double>> points, double x, const std::string& line) {
        SCOPED_TRACE(x);
        std::remove(file.c_str());
        const auto query = [&](auto interpolation) {
            interpolation.Create(points, -1, 4);
            WithLogIn(file, [&] { interpolation.Value(x); });
        };
        if (GetParam()) {
            EXPECT_EXIT((query(LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>())),
                        testing::ExitedWithCode(1), "");
        } else {
            EXPECT_EXIT(query(HERMITE_POLY<double>()), testing::ExitedWithCode(1), "");
        }
        std::ostringstream log;
        log << std::ifstream(file).rdbuf();
        EXPECT_THAT(log.str(), HasSubstr(line));
        std::remove(file.c_str());
    };
    const std::string outside = "ALARM : global : interpolation point outside of data constraints\n";
    const ARRAY<DPOINT<double>> points = Slopes(kGrid);
    stops(points, std::nextafter(210.0, 1e9), outside);
    stops(points, std::nextafter(100.0, 0.0), outside);
    stops(points, std::numeric_limits<double>::quiet_NaN(), outside);
    ARRAY<DPOINT<double>> damaged = points;
    damaged[5].dy = std::numeric_limits<double>::quiet_NaN();
    stops(damaged, 152, "WARN  : global : interpolation failure !!!! Result is Nan!!\n");

    HERMITE_POLY<double> hermite;
    hermite.Create(points);
    EXPECT_EQ(hermite.Value(210), points[11].y);
    EXPECT_EQ(hermite.Value(100), points[0].y);
}

INSTANTIATE_TEST_SUITE_P(LocalAndNot, HermiteHardStop, testing::Bool());

}  // namespace
