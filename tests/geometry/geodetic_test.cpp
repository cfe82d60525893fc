#include "geometry/geodetic.h"

#include <gtest/gtest.h>

#include "geometry/constants.h"
#include "geometry/pair_geometry.h"
#include "geometry/vector_arithmetic.h"
#include "orbit/orbit_state.h"

namespace {

constexpr double kA = 6378137.0;
constexpr double kB = 6356752.315;
const double kE2 = SquaredEccentricity(kA, kB);

TEST(GeographicToCartesian, AgreesWithTheClosedFormOnTheAxes) {
    struct CASE {
        const char* name;
        GEOGRAPHIC position;
        VECTOR_3D<double> expected_m;
    };
    const CASE cases[] = {
        {"equator, Greenwich", {0.0, 0.0, 0.0}, {kA, 0.0, 0.0}},
        {"equator, 90 west", {-kPi / 2, 0.0, 500.0}, {0.0, -kA - 500.0, 0.0}},
        {"north pole, 1 km up", {0.0, kPi / 2, 1000.0}, {0.0, 0.0, kB + 1000.0}},
        {"south pole, below the ellipsoid", {1.0, -kPi / 2, -400.0}, {0.0, 0.0, -kB + 400.0}},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_LE(Length(GeographicToCartesian(c.position, kA, kE2) - c.expected_m), 2e-9);
    }
}

TEST(CartesianToGeographic, ClosesTheRoundTripEverywhere) {
    for (double latitude_deg = -90.0; latitude_deg <= 90.0; latitude_deg += 7.5) {
        for (double longitude_deg = -180.0; longitude_deg <= 180.0; longitude_deg += 45.0) {
            for (const double height_m : {-10000.0, 0.0, 8848.0, 700e3, 1e7}) {
                const GEOGRAPHIC position = {longitude_deg * kRadiansPerDegree, latitude_deg * kRadiansPerDegree,
                                             height_m};
                const VECTOR_3D<double> point_m = GeographicToCartesian(position, kA, kE2);
                const GEOGRAPHIC back = CartesianToGeographic(point_m, kA, kE2);
                EXPECT_LE(Length(GeographicToCartesian(back, kA, kE2) - point_m), 1e-8) << latitude_deg;
                EXPECT_NEAR(back.latitude_rad, position.latitude_rad, 1e-14) << latitude_deg;
                EXPECT_NEAR(back.height_m, height_m, 1e-8) << latitude_deg;
            }
        }
    }
    const std::pair<VECTOR_3D<double>, GEOGRAPHIC> exact[] = {
        {{0.0, 0.0, 0.0}, {0.0, 0.0, -kA}},
        {{0.0, 0.0, 7e6}, {0.0, kPi / 2, 7e6 - kB}},
        {{0.0, 0.0, -7e6}, {0.0, -kPi / 2, 7e6 - kB}},
        {{-7e6, 0.0, 0.0}, {kPi, 0.0, 7e6 - kA}},
        {{0.0, -7e6, 0.0}, {-kPi / 2, 0.0, 7e6 - kA}},
    };
    for (const auto& [point_m, expected] : exact) {
        const GEOGRAPHIC position = CartesianToGeographic(point_m, kA, kE2);
        EXPECT_NEAR(position.longitude_rad, expected.longitude_rad, 1e-15);
        EXPECT_NEAR(position.latitude_rad, expected.latitude_rad, 1e-15);
        EXPECT_NEAR(position.height_m, expected.height_m, 1e-8);
    }
}

/// A quarter turn about z, doubled and shifted: every term of the formula shows in the result.
constexpr DATUM kQuarterTurn = {
    false, {100.0, 200.0, 300.0}, 2.0, {{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}};

TEST(Datum, ScalesTheRotatedVectorAndShiftsLast) {
    const VECTOR_3D<double> point = DatumForward(kQuarterTurn, {10.0, 20.0, 30.0});
    EXPECT_LE(Length(point - VECTOR_3D<double>{140.0, 180.0, 360.0}), 1e-12);
    DATUM shift_only = kQuarterTurn;
    shift_only.shift_only = true;
    EXPECT_LE(Length(DatumForward(shift_only, {10.0, 20.0, 30.0}) - VECTOR_3D<double>{110.0, 220.0, 330.0}), 1e-12);
}

TEST(Datum, InverseClosesAlsoForSmallAngleMatrices) {
    // Orthonormal to first order only: the transpose as inverse would miss by about a millimetre.
    const DATUM bessel = {false,
                          {598.1, 73.7, 418.2},
                          1.0000067,
                          {{1.0, -1.18997e-05, 2.18e-07}, {1.18997e-05, 1.0, 9.79e-07}, {-2.18e-07, -9.79e-07, 1.0}}};
    const VECTOR_3D<double> point_m = {4033000.0, 768000.0, 4863000.0};
    for (const DATUM& datum : {bessel, kQuarterTurn, DATUM{true, {1.0, 2.0, 3.0}}}) {
        EXPECT_LE(Length(DatumInverse(datum, DatumForward(datum, point_m)) - point_m), 1e-8);
    }
    EXPECT_TRUE(IsRotation(bessel.rotation, 1e-6));
    EXPECT_TRUE(IsRotation(kQuarterTurn.rotation, 1e-15));
}

TEST(Datum, RefusesMatricesThatAreNoRotation) {
    const double cases[][3][3] = {
        {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}},  // mirrors
        {{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}},      {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}},
        {{1, 1e-5, 0}, {0, 1, 0}, {0, 0, 1}},  // sheared
        {{1, 0, 0}, {0, 1, 0}, {0, -1e-5, 1}},   {{1, 0, 1e-5}, {0, 1, 0}, {0, 0, 1}},
        {{1, 0, 0}, {0, 1.00001, 0}, {0, 0, 1}},  // stretched
        {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.99999}},
    };
    for (const auto& matrix : cases) EXPECT_FALSE(IsRotation(matrix, 1e-6)) << &matrix - cases;
    const double cycle[3][3] = {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}};
    EXPECT_TRUE(IsRotation(cycle, 1e-15));
}

TEST(UpAt, IsTheNormalOfTheEllipsoid) {
    for (const GEOGRAPHIC& at : {GEOGRAPHIC{0.3, 0.8, 0.0}, {-2.5, -1.2, 0.0}, {1.9, 0.0, 0.0}, {0.0, kPi / 2, 0.0}}) {
        const double c = std::cos(at.latitude_rad);
        const VECTOR_3D<double> normal = {c * std::cos(at.longitude_rad), c * std::sin(at.longitude_rad),
                                          std::sin(at.latitude_rad)};
        EXPECT_LE(Length(UpAt(GeographicToCartesian(at, kA, kE2), kA, kB) - normal), 1e-15) << at.latitude_rad;
    }
}

TEST(PairGeometry, AgreesWithTheRightAngledTriangle) {
    // The slave stands off the master's line of sight at a right angle; flights north and south, looks east and west.
    const VECTOR_3D<double> point_m = {6.4e6, 0.0, 0.0};
    const VECTOR_3D<double> up = {1.0, 0.0, 0.0};
    constexpr double kRange_m = 8e5;
    constexpr double kTurn_m = 0.0155;
    for (const double speed_m_s : {7500.0, -7500.0}) {
        for (const double look_rad : {0.6, -0.6}) {
            const VECTOR_3D<double> sight = {std::cos(look_rad), std::sin(look_rad), 0.0};
            const VECTOR_3D<double> across = {std::abs(sight.y), look_rad > 0.0 ? -sight.x : sight.x, 0.0};
            const ORBIT_STATE master = {point_m + kRange_m * sight, {0.0, 0.0, speed_m_s}, {}};
            for (const double baseline_m : {250.0, -250.0}) {
                const PAIR_GEOMETRY pair =
                    PairGeometryAt(point_m, up, master, master.position_m + baseline_m * across, kTurn_m);
                EXPECT_NEAR(pair.perpendicular_baseline_m, baseline_m, 1e-8);
                const double slave_range_m = std::hypot(kRange_m, baseline_m);
                EXPECT_NEAR(pair.height_of_ambiguity_m, kTurn_m * across.x * slave_range_m / 250.0, 1e-9);
            }
            const PAIR_GEOMETRY farther = PairGeometryAt(point_m, up, master, master.position_m + 9.0 * sight, kTurn_m);
            EXPECT_NEAR(farther.perpendicular_baseline_m, 0.0, 1e-8);
            EXPECT_TRUE(
                std::isinf(PairGeometryAt(point_m, up, master, master.position_m, kTurn_m).height_of_ambiguity_m));
        }
    }
}

}  // namespace
