// What the interpolators log, refuse, and end the process for.

#include <gmock/gmock.h>
#include <unistd.h>

#include <limits>
#include <thread>

#include "lib/baselib/errors/error_exception.h"
#include "orbit/interpolation/everett.h"
#include "orbit/interpolation/local_interpolation.h"
#include "orbit/interpolation/spline.h"
#include "tests/kit/log_capture.h"
#include "tests/orbit/closed_forms.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::string LogOfRefusal(const std::function<void()>& call) {
    return LoggedBy([&] { EXPECT_THROW(call(), ERROR_ARGUMENT); });
}

using X = std::vector<double>;
const CLOSED_FORM kSine = SineOf(7e6L, 1e-3L);
const X kGrid = Grid(100, 10, 12);
ARRAY<POINT<double>> Points(const X& x) {
    return SamplesOf<POINT<double>>(kSine, x);
}
ARRAY<DPOINT<double>> Slopes(const X& x) {
    return SamplesOf<DPOINT<double>>(kSine, x);
}

using PLAIN = INTERPOLATION<double, POINT<double>>;
using LOCAL_FIT = LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
using LOCAL_POLYNOM = LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;
using LOCAL_HERMITE = LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;

template <class I>
std::string LogOfCreate(const X& x, int order, int count = -1) {
    return LoggedBy([&] { I().Create(Points(x), order, count); });
}

TEST(InterpolatorLog, TellsOrdersDroppedValuesAndPieces) {
    const X three = {0, 1, 2};
    const X many = Grid(0, 10, 40);
    EXPECT_THAT(LogOfCreate<POLYNOM_FIT<double>>(kGrid, 3),
                AllOf(HasSubstr("INFO  : global : POLYFIT: polynomial fit order = 3\n"),
                      HasSubstr("INFO  : global : POLYFIT: chi^2 = "), Not(HasSubstr("reduce"))));
    EXPECT_THAT(LogOfCreate<POLYNOM_FIT<double>>(three, 3),
                HasSubstr("WARN  : global : POLYFIT: reduce polynomial fit order 3 -> 2\n"));
    EXPECT_THAT(LogOfCreate<POLYNOM_FIT<double>>(three, 2), Not(HasSubstr("reduce")));
    EXPECT_THAT(LogOfCreate<CHEBY_POLY<double>>(three, 9),
                AllOf(HasSubstr("WARN  : global : CHEBY_POLY::Create: reduce polynomial fit order 9 -> 2\n"),
                      HasSubstr("INFO  : global : CHEBY_POLY::Create: chi^2 = ")));
    EXPECT_EQ(CountOf("reduce polynomial fit order 9 -> 4\n", LogOfCreate<LOCAL_FIT>(kGrid, 9, 5)), 1);

    EXPECT_THAT(LogOfCreate<POLYNOM_FIT<double>>(many, 17),
                HasSubstr("of 18 singular values lie below 1e-5 of the largest and were dropped"));
    EXPECT_THAT(LogOfCreate<POLYNOM_FIT<double>>(many, 11), Not(HasSubstr("dropped")));
    EXPECT_EQ(CountOf("dropped", LogOfCreate<LOCAL_FIT>(many, 17, 30)), 1) << "once for all pieces";

    EXPECT_EQ(LoggedBy([] { LOCAL_POLYNOM().Create(SamplesOf<POINT<double>>(kSine, kGrid, 3), -1, 11); }),
              "PARAM : global : LOCAL_INTERPOLATION: polynom count; 2\n"
              "PARAM : global : idx_start=3 idx_stop=13 t_start=100 t_stop=155\n"
              "PARAM : global : idx_start=4 idx_stop=14 t_start=155 t_stop=210\n");
    EXPECT_THAT(LogOfCreate<LOCAL_FIT>(kGrid, -1, 5), HasSubstr("reduce polynomial fit order 7 -> 4\n"))
        << "by default";
    EXPECT_THAT(LogOfCreate<LOCAL_POLYNOM>(three, -1, 5),
                HasSubstr("LOCAL_INTERPOLATION: change support_point_count from 5 to 3\n"));
    EXPECT_THAT(LoggedBy([&] { HERMITE_POLY<double>().Create(Slopes(three), -1, 5); }),
                HasSubstr("HERMITE_POLY::Create: change node count from 5 to 3\n"));
    EXPECT_EQ(LoggedBy([] { EXPECT_EQ(HERMITE_POLY<double>().GetCoeffs().Count(), 0); }),
              "INFO  : global : INTERPOLATION::GetCoeffs() shall not be called\n");
    EXPECT_THAT(LoggedBy([] { EXPECT_EQ(SPLINE<double>().GetCoeffs().Count(), 0); }),
                HasSubstr("WARN  : global : SPLINE::GetCoeffs() makes no sense\n"));
    const ARRAY<POINT<double>> square = SamplesOf<POINT<double>>(PolynomialOf({0, 0, 1}, 0, 1), {1, 2, 4});
    const ARRAY<double> differences = Created<POLYNOM<double>>(square).GetCoeffs();
    EXPECT_EQ((std::vector<double>{1, 3, 1}), X(differences.Data(), differences.Data() + differences.Count()))
        << "divided differences";
}

TEST(LocalInterpolation, MakesOfManyPiecesThoseThatAreAskedFor) {
    constexpr int kPieces = LOCAL_PIECES::kMostMadeAtOnce + 1;
    const X x = Grid(100, 10, kPieces + 8);
    LOCAL_FIT local;
    const std::string created = LoggedBy([&] { local.Create(Points(x), 7, 9); });
    EXPECT_THAT(created, HasSubstr("LOCAL_INTERPOLATION: polynom count; " + std::to_string(kPieces) + "\n"));
    EXPECT_EQ(CountOf("idx_start=", created), 1);
    EXPECT_EQ(CountOf("idx_start=", LogOfCreate<LOCAL_FIT>(Grid(100, 10, kPieces + 7), 7, 9)), kPieces - 1)
        << "few: all";

    const LOCAL_FIT copy = local;  // shares the pieces
    double value = 0;
    const std::string asked = LoggedBy([&] {
        for (const double at : {1142.0, 1138.0, 1142.0}) value = copy.Value(at);
    });
    EXPECT_THAT(asked, HasSubstr("PARAM : global : idx_start=100 idx_stop=108 t_start=1135 t_stop=1145\n"));
    EXPECT_EQ(CountOf("idx_start=", asked), 1);
    const ARRAY<POINT<double>> nine = Points({x.begin() + 100, x.begin() + 109});
    EXPECT_EQ(value, Created<POLYNOM_FIT<double>>(nine, 7).Value(1142.0));

    const std::string made = LoggedBy([&] {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (const double at : x) (void)local.Value(at);
            });
        for (std::thread& thread : threads) thread.join();
    });
    EXPECT_EQ(CountOf("idx_start=", made), kPieces - 2) << "each of the others once";
}

TEST(Everett, RefusesWhatItCanNotInterpolate) {
    X uneven = kGrid;
    uneven[7] += 1.1e-7;  // the tolerance is 1e-8 of the step of 10
    X nearly = kGrid;
    nearly[7] += 0.9e-7;
    const std::tuple<X, int, const char*> cases[] = {
        {{1}, 0, "ALARM : global : EVERETT::Create: more than 1 value needed.\n"},
        {kGrid, 3, "Everett interpolation only possible with even order, not for given order 3\n"},
        {uneven, 2, "EVERETT::Create: Everett interpolation only possible on equidistant grid.\n"},
        {Grid(0, 10, 4), 4, "EVERETT::Create: order 4 needs at least 5 support points, not 4"},
        {kGrid, -2, "EVERETT::Create: the order -2 is outside 0..128"},
    };
    for (const auto& [x, order, text] : cases) {
        EXPECT_THAT(LogOfRefusal([&] { Created<EVERETT<double>>(Points(x), order); }), HasSubstr(text));
    }
    Created<EVERETT<double>>(Points(nearly), 2);
    const std::pair<X, bool> grids[] = {{{}, true}, {{1}, true}, {{1, 5}, true}, {{1, 5, 9}, true}, {{1, 5, 8}, false}};
    for (const auto& [x, is_equidistant] : grids) {
        EXPECT_EQ(EVERETT<double>().IsEquidistant(Points(x)), is_equidistant) << x.size();
    }
}

TEST(Everett, ForcesTheOuterCellsInwardsAndSaysSoALimitedNumberOfTimes) {
    const auto everett = Created<EVERETT<double>>(Points(kGrid), 4);  // cells 2 .. 9 of points 0 .. 11
    const std::tuple<double, int, double, const char*> cases[] = {
        {120, 2, 0, ""},
        {199.9, 9, 0.99, ""},
        {119, 2, -0.1, "WARN  : global : EVERETT::GetXi: Forced interpolation left hand side.\n"},
        {200, 9, 1, "WARN  : global : EVERETT::GetXi: Forced interpolation right hand side.\n"},
        {95, 2, -2.5, "DEBUG : global : EVERETT::GetXi: Extrapolation needed (r=-0.5 p=-2.5 q=3.5)\n"},
        {215, 9, 2.5, "DEBUG : global : EVERETT::GetXi: Extrapolation needed (r=11.5 p=2.5 q=-1.5)\n"},
    };
    for (const auto& [x, index, p, text] : cases) {
        SCOPED_TRACE(x);
        EVERETT<double>::CELL cell{};
        const std::string log = LoggedBy([&] { cell = everett.GetXi(x); });
        EXPECT_EQ(cell.index, index);
        EXPECT_NEAR(cell.p, p, 1e-12);
        EXPECT_EQ(log.empty(), *text == '\0');
        EXPECT_THAT(log, HasSubstr(text));
    }
    const EVERETT<double> copy = everett;
    const std::string log = LoggedBy([&] {
        for (int i = 0; i < 1000; ++i) copy.Value(101);
    });
    EXPECT_EQ(CountOf("Forced interpolation left hand side.", log), 10);
    EXPECT_EQ(CountOf("WARN  : global : EVERETT::GetXi: no further lines of this kind from this axis", log), 1);
}

TEST(Interpolators, RefuseBadSupportPointsAndParameters) {
    for (const X& x : std::vector<X>{{}, {0, 2, 1}, {0, 1, 1}, {0, kNan, 2}, {0, 1e99}}) {
        ARRAY<POINT<double>> points(0, static_cast<int>(x.size()));
        for (int i = 0; i < points.Count(); ++i) points[i] = {x[static_cast<size_t>(i)], 1};
        SCOPED_TRACE(testing::PrintToString(x));
        EXPECT_THAT(LogOfRefusal([&] { SPLINE<double>().Create(points); }),
                    HasSubstr("ALARM : global : SPLINE::Create: "));
        EXPECT_THROW(LOCAL_POLYNOM().Create(points), ERROR_ARGUMENT);
    }
    ARRAY<POINT<double>> infinite = Points({1, 2, 3});
    infinite[1].y = std::numeric_limits<double>::infinity();
    EXPECT_THAT(LogOfRefusal([&] { POLYNOM_FIT<double>().Create(infinite); }),
                HasSubstr("POLYNOM_FIT::Create: the ordinate of support point 1, inf, is out of range"));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM<double>().Create(Points(Grid(0, 10, 257))); }),
                HasSubstr("257 support points are too many for one polynomial (at most 256); a local interpolation"));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM<double>().Create(Points({0, 1e-9, 10})); }), HasSubstr("too close"));
    EXPECT_THAT(LogOfRefusal([] { POLYNOM_FIT<double>().SetOrder(-2); }),
                HasSubstr("the fit order -2 is outside 0..128"));
    for (const int count : {0, -2, 129}) {
        EXPECT_THAT(LogOfRefusal([&] { HERMITE_POLY<double>().SetSupportPointCount(count); }),
                    HasSubstr("HERMITE_POLY: the node count " + std::to_string(count) + " is outside 1..128"));
    }
    for (const int count : {0, -7}) {
        EXPECT_THAT(LogOfRefusal([&] { LOCAL_POLYNOM().SetSupportPointCount(count); }),
                    HasSubstr("the support point count " + std::to_string(count) + " is below 1"));
    }
    const auto with_eight = Created<HERMITE_POLY<double>>(Slopes(kGrid), -1, 8);
    EXPECT_EQ(Created<HERMITE_POLY<double>>(Slopes(kGrid)).Value(104), with_eight.Value(104));
}

/// How many powers of ten a query may reach.
int ReachOf(const PLAIN& interpolation) {
    int power = 0;
    while (ErrorAndLogOf([&] { interpolation.Value(std::pow(10.0, power)); }).find("so far") == std::string::npos)
        ++power;
    return power;
}

/// Queries that would overflow, or have no support points to stand on, end in a message, never in a trap.
TEST(Interpolators, RefuseQueriesThatWouldOverflowOrLackPoints) {
    POLYNOM<double> polynom;
    POLYNOM_FIT<double> fit;
    CHEBY_POLY<double> chebyshev;
    SPLINE<double> spline;
    EVERETT<double> everett;
    LOCAL_POLYNOM local;
    ARRAY<POINT<double>> points = Points(kGrid);
    ARRAY<POINT<double>> bad = points;
    bad[1].x = bad[0].x;
    const char* const no_points = "a query at 0 before there are support points";
    for (PLAIN* one : std::initializer_list<PLAIN*>{&polynom, &fit, &chebyshev, &spline, &everett, &local}) {
        EXPECT_THAT(LogOfRefusal([&] { one->Value(0); }), HasSubstr(no_points));
        one->Create(points, 8, 8);
        for (const double x : {1e6, -1e9, 1e15}) one->Value(x);
        for (const double x : {1e299, -1e308, kNan}) {
            EXPECT_THAT(LogOfRefusal([&] { one->Value(x); }),
                        HasSubstr("so far outside the data that its result would overflow"));
        }
        one->Create(SamplesOf<POINT<double>>(SineOf(1, 0.05L), kGrid), 6, 12);
        const int reach = ReachOf(*one);
        for (const int large : {0, 11}) {
            ARRAY<POINT<double>> uneven = points;
            uneven[large].y = 1e59;
            one->Create(uneven, 6, 12);
            EXPECT_LT(ReachOf(*one), reach) << "the larger the ordinates";
            EXPECT_GT(ReachOf(*one), 12);
        }
        if (one == &fit || one == &chebyshev) continue;  // a fit takes equal abscissae
        EXPECT_THROW(one->Create(bad), ERROR_ARGUMENT);
        EXPECT_THAT(LogOfRefusal([&] { one->Value(0); }), HasSubstr(no_points)) << "nothing of the old data stays";
    }
    const auto narrow = Created<POLYNOM_FIT<float>>(SamplesOf<POINT<float>>(kSine, Grid(0, 1, 12)), 8);
    EXPECT_THAT(LogOfRefusal([&] { narrow.Value(1e8F); }), HasSubstr("does not fit the type float"));
}

template <class I>
void ExpectEndsTheProcess(ARRAY<DPOINT<double>> points, double x, const char* line) {
    const I interpolation = Created<I>(points, -1, 4);
    const auto query = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);  // where the child's log goes, to the pipe that is matched
        interpolation.Value(x);
    };
    EXPECT_EXIT(query(), testing::ExitedWithCode(1), HasSubstr(line)) << x;
}

TEST(HermiteHardStop, EndsTheProcessOutsideTheDataAndForNan) {
    const char* const outside = "interpolation point outside of data constraints\n";
    const ARRAY<DPOINT<double>> points = Slopes(kGrid);
    ARRAY<DPOINT<double>> damaged = points;
    damaged[5].dy = kNan;
    for (const double x : {std::nextafter(210.0, 1e9), std::nextafter(100.0, 0.0), kNan}) {
        ExpectEndsTheProcess<HERMITE_POLY<double>>(points, x, outside);
        ExpectEndsTheProcess<LOCAL_HERMITE>(points, x, outside);
    }
    ExpectEndsTheProcess<HERMITE_POLY<double>>(damaged, 152, "interpolation failure !!!! Result is Nan!!\n");
    ExpectEndsTheProcess<LOCAL_HERMITE>(damaged, 152, "interpolation failure !!!! Result is Nan!!\n");
}

}  // namespace
