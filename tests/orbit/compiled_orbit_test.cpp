#include "orbit/compiled_orbit.h"

#include <gmock/gmock.h>

#include <cmath>

#include "tests/kit/log_capture.h"
#include "tests/kit/orbit_pools.h"

namespace {

constexpr double kHalfUlp_m = 4.7e-10;  // of coordinates between 2^22 and 2^23 m

ORBIT_OF_POOL OrbitOf(const ORBIT_SAMPLING& sampling) {
    return ReadOrbit(OrbitPool(sampling));
}

TEST(CompiledOrbit, AnswersAsTheInterpolationItself) {
    std::vector<ORBIT_SAMPLING> samplings = {{.type = "orbit_pool_double_utc"},
                                             {.type = "orbit_pool_float_double"},
                                             {.interpolation = "localpolynom_0_8", .first_s = 50000.0}};
    for (const char* name :
         {"polynom", "polyfit_7", "spline", "localpolynom_0_8", "localpolyfit_5_9", "chebyshev_7", "localchebyshev_5_8",
          "hermite_0_8", "hermite_0_3", "localhermite_0_5", "everett_8", "everett_2"})
        samplings.push_back({.interpolation = name});
    for (const ORBIT_SAMPLING& sampling : samplings) {
        SCOPED_TRACE(sampling.type + " " + sampling.interpolation);
        const ORBIT_OF_POOL orbit = OrbitOf(sampling);
        const double first_s = orbit.FirstTime() + 51.0;
        const COMPILED_ORBIT compiled(orbit, first_s, first_s + 33.0);
        EXPECT_EQ(compiled.Pieces().empty(), sampling.type == "orbit_pool_float_double");
        for (int i = 0; i <= 5000; ++i) {
            const double t_s = first_s - 1.0 + 0.007 * i;  // a little outside, too
            const ORBIT_STATE expected = orbit.State(t_s);
            const ORBIT_STATE state = compiled.State(t_s);
            ASSERT_LE(Distance(state.position_m, expected.position_m), 1e-9 + 8 * kHalfUlp_m) << t_s;
            ASSERT_LE(Distance(state.velocity_m_s, expected.velocity_m_s), 3e-9) << t_s;
            ASSERT_LE(Distance(state.acceleration_m_s2, expected.acceleration_m_s2), 3e-8) << t_s;
        }
    }
}

TEST(CompiledOrbit, LeavesOutPiecesWithoutALength) {
    ORBIT_SAMPLING sampling{.interpolation = "spline", .reference = "0"};
    std::vector<std::string> times = TimeItems(sampling);
    times[12] = Digits(std::nextafter(std::stod(times[11]), 1e9), false);  // nothing lies midway between the two
    POOL_TEXT text = OrbitPool(sampling, [](double) { return ORBIT_STATE{{7e6, 1e6, 2e6}, {}, {}}; });
    text.SetList("times", "FLT_15_V", times);
    const ORBIT_OF_POOL orbit = ReadOrbit(text);
    const COMPILED_ORBIT compiled(orbit, orbit.FirstTime(), orbit.LastTime());
    EXPECT_EQ(compiled.Pieces().size(), 2u * 23u - 1u);
}

/// Rounding to float moves coordinates of 0.05 m by up to 1.9e-9 m, more than a compiled one may differ, and those of
/// a quarter of the size by up to 0.5e-9 m.
TEST(CompiledOrbit, AgreesInEveryCoordinateOrNotAtAll) {
    for (VECTOR_3D<double> size_m : {VECTOR_3D<double>{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}) {
        const auto pieces = [&](double metres) {
            const auto orbit = OrbitFrom(
                [&](double t) {
                    return ORBIT_STATE{(metres + 0.25 * metres * std::sin(0.01 * t)) * size_m,
                                       0.0025 * metres * std::cos(0.01 * t) * size_m,
                                       {}};
                },
                "hermite_0_4", "orbit_pool_float_double");
            return COMPILED_ORBIT(*orbit, orbit->FirstTime(), orbit->LastTime()).Pieces().size();
        };
        EXPECT_EQ(pieces(0.012), 32u);
        EXPECT_LT(pieces(0.048), 32u);
    }
}

TEST(CompiledOrbit, KeepsToTheDataOfTheOrbit) {
    const ORBIT_OF_POOL orbit = OrbitOf({});
    const COMPILED_ORBIT compiled(orbit, orbit.FirstTime() - 100.0, orbit.FirstTime() + 12.0);
    ASSERT_FALSE(compiled.Pieces().empty());
    EXPECT_EQ(compiled.Pieces().front().first_s, orbit.FirstTime());
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() - 1e-9), nullptr);
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime()), &compiled.Pieces().front());
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() + 15.1), nullptr);
    EXPECT_EQ(compiled.PieceAt(orbit.FirstTime() + 15.0), &compiled.Pieces().back());  // hermite: the earlier one's
    const COMPILED_ORBIT whole(orbit, orbit.FirstTime(), orbit.LastTime());
    EXPECT_EQ(whole.PieceAt(orbit.LastTime()), &whole.Pieces().back());
    // The hard stop outside the data stays.
    EXPECT_EXIT((void)compiled.State(orbit.FirstTime() - 1.0), testing::ExitedWithCode(1), "");
    EXPECT_TRUE(COMPILED_ORBIT(orbit, -500.0, -400.0).Pieces().empty());
}

/// At a support point hermite answers from the earlier cell, the others from the later one: with one node or two the
/// cells differ by hundreds of metres.
TEST(CompiledOrbit, AnswersFromTheInterpolationsOwnPieceWhereTwoMeet) {
    for (const char* interpolation : {"hermite_0_1", "hermite_0_2", "localhermite_0_2", "localpolynom_0_2",
                                      "localpolynom_0_3", "localhermite_0_3", "spline"}) {
        const ORBIT_OF_POOL orbit = OrbitOf({.interpolation = interpolation});
        const COMPILED_ORBIT compiled(orbit, orbit.FirstTime(), orbit.LastTime());
        ASSERT_FALSE(compiled.Pieces().empty()) << interpolation;
        for (const double bound_s : orbit.PieceBounds()) {
            for (const double t_s : {std::nextafter(bound_s, 0.0), bound_s, std::nextafter(bound_s, 1e9)}) {
                if (compiled.PieceAt(t_s) == nullptr) continue;  // outside the data
                EXPECT_LE(Distance(compiled.State(t_s).position_m, orbit.State(t_s).position_m), 1e-8)
                    << interpolation << " at " << t_s;
            }
        }
        const COMPILED_ORBIT part(orbit, orbit.FirstTime() + 31.0, orbit.FirstTime() + 47.0);
        const ORBIT_PIECE& last = part.Pieces().back();
        EXPECT_NE(part.PieceAt(last.last_s), nullptr) << "a row of points is solved up to there";
    }
}

TEST(CompiledOrbit, CompilesWhatItCanAndTellsTheRest) {
    // Everett's own rounding is above what a polynomial leaves, in every fourth cell of this orbit.
    const ORBIT_OF_POOL everett = OrbitOf({.interpolation = "everett_8", .count = 84});
    const COMPILED_ORBIT inner(everett, everett.FirstTime() + 50.0, everett.LastTime() - 50.0);
    EXPECT_EQ(inner.Pieces().size(), 2u * 73u + 2u);
    // A polynomial through 60 vectors is worthless towards its ends.
    const ORBIT_OF_POOL polynom = OrbitOf({.interpolation = "polynom", .count = 60});
    std::size_t pieces = 0;
    const std::string log = LoggedBy([&] {
        const COMPILED_ORBIT compiled(polynom, polynom.FirstTime(), polynom.LastTime());
        pieces = compiled.Pieces().size();
        EXPECT_NE(compiled.PieceAt(0.5 * (polynom.FirstTime() + polynom.LastTime())), nullptr);
        EXPECT_EQ(compiled.PieceAt(polynom.LastTime()), nullptr);
    });
    EXPECT_GT(pieces, 20u);
    EXPECT_THAT(log, testing::HasSubstr("_orbit.pool: polynom: "));
    EXPECT_THAT(log, testing::HasSubstr(" s to 593.500000 s are no polynomials to 1e-9 m; points there take longer\n"));
}

/// State vectors 2e9 s or 27 years from their reference time, against the same ones near theirs.
TEST(FarOrbit, IsAsGoodAsANearOneWhenCountedFromANearbySecond) {
    // Type, reference, seconds between the two references. From 1990 to the end of 2016, 23:58:00: 9861 days, less half
    // a second, and eleven leap seconds.
    const std::tuple<const char*, const char*, double> references[] = {
        {"orbit_pool_double_utc", "01-JAN-1990/00:00:00.500000", 9861 * 86400.0 + 86280 - 0.5 + 11},
        {"orbit_pool_double_double", "-2000000000.125", 2e9 + 1000.125}};
    for (const auto& [type, reference, seconds] : references) {
        SCOPED_TRACE(type);
        POOL_TEXT text = OrbitPool({.type = type});
        const ORBIT_OF_POOL near = ReadOrbit(text);
        text.SetText("orbit_reference_time", reference);
        ORBIT_OF_POOL orbit = ReadOrbit(text);
        EXPECT_EQ(near.SecondsFromReferenceToZero(), 0.0);
        EXPECT_NEAR(near.SecondsFromReferenceOf(orbit), -seconds, 1e-9 * seconds);
        // Counted from the reference: half the last place of the time, 1.2e-7 s, at 7.5 km/s.
        EXPECT_LT(Distance(orbit.State(seconds + 103.5).position_m, near.State(103.5).position_m), 2e-3);
        (void)orbit.State(orbit.FirstTime());  // hermite: the ends lie inside
        (void)orbit.State(orbit.LastTime());

        const double moved_s = orbit.CountFromNearbySecond();
        EXPECT_EQ(moved_s, std::floor(seconds + 123.5));
        const double later_s = near.SecondsFromReferenceOf(orbit);  // its zero after that of the near one
        EXPECT_EQ(later_s, moved_s - seconds);
        EXPECT_EQ(orbit.FirstTime(), 3.5 - later_s);
        const ORBIT_OF_POOL copy = orbit;
        EXPECT_EQ(copy.SecondsFromReferenceToZero(), moved_s);
        const COMPILED_ORBIT compiled(orbit, orbit.FirstTime(), orbit.LastTime());
        ASSERT_FALSE(compiled.Pieces().empty());
        for (double t_s = 3.5; t_s <= 233.5; t_s += 0.71) {
            EXPECT_LE(Distance(orbit.State(t_s - later_s).position_m, near.State(t_s).position_m), 1e-8) << t_s;
            EXPECT_LE(Distance(compiled.State(t_s - later_s).position_m, near.State(t_s).position_m), 1e-8) << t_s;
        }
    }
    const ANY_TIME utc = UNIVERSAL_TIME::FromText("31-DEC-2016/23:59:00.000001");
    const AXIS_ZERO zero = ZeroNear(UNIVERSAL_TIME::FromText("01-JAN-1970/00:00:00.000000"), utc);
    EXPECT_EQ(SecondsSince(zero, utc), 1e-6) << "not a microsecond is lost over 47 years";
    EXPECT_EQ(ZeroNear(0.0, kNearSeconds).after_s, 0.0);
    EXPECT_EQ(ZeroNear(0.0, -kNearSeconds - 1.5).after_s, -kNearSeconds - 2.0);
}

}  // namespace
