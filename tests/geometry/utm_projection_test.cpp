#include "geometry/utm_projection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "geometry/constants.h"
#include "geometry/geodetic.h"
#include "tests/geometry/krueger.h"

namespace {

struct ELLIPSOID {
    const char* name;
    double a_m;
    double e2;
};
const ELLIPSOID kWgs84 = {"WGS84", 6378137.0, SquaredEccentricity(6378137.0, 6356752.315)};
const ELLIPSOID kBessel = {"Bessel", 6377397.155, SquaredEccentricity(6377397.155, 6356078.965)};

double Degrees(double degrees, double minutes, double seconds) {
    return (degrees + minutes / 60.0 + seconds / 3600.0) * kRadiansPerDegree;
}

TEST(UtmProjection, AgreesWithPublishedPoints) {
    // Snyder (1987), pp. 269-272: Clarke 1866, 40 30' N, 73 30' W, printed to 0.1 m from the central meridian 75 W.
    const UTM_PROJECTION zone18(6378206.4, 0.00676866, 18, false);
    const MAP_POSITION map = zone18.Forward({-Degrees(73, 30, 0), Degrees(40, 30, 0)});
    EXPECT_NEAR(map.easting_m - 500000.0, 127106.5, 0.05);
    EXPECT_NEAR(map.northing_m, 4484124.4, 0.05);
    const MAP_GEOGRAPHIC back = zone18.Inverse({627106.5, 4484124.4});
    EXPECT_NEAR(back.longitude_rad, -Degrees(73, 30, 0), Degrees(0, 0, 0.003));
    EXPECT_NEAR(back.latitude_rad, Degrees(40, 30, 0), Degrees(0, 0, 0.003));
}

/// Largest errors over latitudes -80..84 within the given distance from the central meridian.
struct ERRORS {
    double inverse_m = 0.0;  ///< against the higher-order series
    double forward_m = 0.0;
    double closure_m = 0.0;  ///< Forward(Inverse(p)) - p
    double east_m = 0.0;     ///< of the inverse alone
    double north_m = 0.0;    ///< of the inverse alone, beside the first term that the rectifying radius leaves out
};

ERRORS LargestErrors(const ELLIPSOID& ellipsoid, int zone, bool south, double longitude_limit_deg) {
    const UTM_PROJECTION utm(ellipsoid.a_m, ellipsoid.e2, zone, south);
    const double meridian_rad = (6.0 * zone - 183.0) * kRadiansPerDegree;
    ERRORS errors;
    for (double latitude_deg = -80.0; latitude_deg <= 84.0; latitude_deg += 2.0) {
        const double latitude_rad = latitude_deg * kRadiansPerDegree;
        const double left_out_rad = 175.0 / 16384.0 * std::pow(ellipsoid.e2, 4) * latitude_rad;
        for (double delta_deg = -longitude_limit_deg; delta_deg <= longitude_limit_deg; delta_deg += 0.5) {
            const double delta_rad = delta_deg * kRadiansPerDegree;
            const KRUEGER_POSITION truth = KruegerForward(ellipsoid.a_m, ellipsoid.e2, delta_rad, latitude_rad);
            const MAP_POSITION map = {500000.0 + kUtmScale * truth.easting_m,
                                      (south ? 1e7 : 0.0) + kUtmScale * truth.northing_m};
            const MAP_GEOGRAPHIC reached = utm.Inverse(map);
            const double turned = std::remainder(reached.longitude_rad - meridian_rad - delta_rad, kTwoPi);
            errors.inverse_m = std::max(
                errors.inverse_m,
                std::hypot(turned * std::cos(latitude_rad), reached.latitude_rad - latitude_rad) * ellipsoid.a_m);
            const double east_m = turned * std::cos(latitude_rad) * ellipsoid.a_m;
            const double north_m = (reached.latitude_rad - latitude_rad + left_out_rad) * ellipsoid.a_m;
            errors.east_m = std::max(errors.east_m, std::abs(east_m));
            errors.north_m = std::max(errors.north_m, std::abs(north_m));
            const MAP_POSITION forward = utm.Forward({meridian_rad + delta_rad, latitude_rad});
            errors.forward_m = std::max(
                errors.forward_m, std::hypot(forward.easting_m - map.easting_m, forward.northing_m - map.northing_m));
            const MAP_POSITION closed = utm.Forward(reached);
            errors.closure_m = std::max(
                errors.closure_m, std::hypot(closed.easting_m - map.easting_m, closed.northing_m - map.northing_m));
        }
    }
    return errors;
}

TEST(UtmProjection, HoldsItsErrorBoundWithinThreeDegreesAndClosesToSix) {
    for (const auto& [ellipsoid, zone, south] : {std::tuple{kWgs84, 1, true}, {kBessel, 32, false}}) {
        SCOPED_TRACE(ellipsoid.name);
        const ERRORS errors = LargestErrors(ellipsoid, zone, south, 3.0);
        EXPECT_LE(errors.inverse_m, kUtmErrorMetres);
        EXPECT_LE(errors.forward_m, kUtmErrorMetres);
        EXPECT_LE(LargestErrors(ellipsoid, zone, south, 6.0).closure_m, 1e-6);
        // Near the meridian even the smallest terms are larger than what the series leaves out.
        const ERRORS near = LargestErrors(ellipsoid, zone, south, 1.5);
        EXPECT_LE(near.east_m, 5e-6);
        EXPECT_LE(near.north_m, 1e-6);
    }
}

TEST(UtmProjection, TheForwardSeriesAloneIsGoodToCentimetresBesideTheZones) {
    const UTM_PROJECTION utm(kWgs84.a_m, kWgs84.e2, 31, false);
    for (const double delta_rad : {7.5 * kRadiansPerDegree, -7.5 * kRadiansPerDegree}) {
        for (double latitude_deg = -80.0; latitude_deg <= 80.0; latitude_deg += 10.0) {
            const double latitude_rad = latitude_deg * kRadiansPerDegree;
            const KRUEGER_POSITION truth = KruegerForward(kWgs84.a_m, kWgs84.e2, delta_rad, latitude_rad);
            const MAP_POSITION map = utm.Forward({utm.CentralMeridian() + delta_rad, latitude_rad});
            EXPECT_NEAR(map.easting_m - 500000.0, kUtmScale * truth.easting_m, 0.06) << latitude_deg;
            EXPECT_NEAR(map.northing_m, kUtmScale * truth.northing_m, 0.004) << latitude_deg;
        }
    }
}

TEST(UtmProjection, TakesLongitudesOfAnyTurnAndFoldsItsOwn) {
    constexpr double kDegree = kRadiansPerDegree;
    struct CASE {
        int zone;
        double given_deg, in_another_turn_deg, folded_deg;
    };
    // Across the meridian of 180 degrees, from both sides.
    for (const CASE& c : {CASE{1, 181.0, -179.0, -179.0}, CASE{1, 179.0, -181.0, 179.0},
                          CASE{60, 181.0, -179.0, -179.0}, CASE{60, 539.0, 179.0, 179.0}}) {
        SCOPED_TRACE(c.given_deg);
        const UTM_PROJECTION utm(kWgs84.a_m, kWgs84.e2, c.zone, false);
        const MAP_POSITION map = utm.Forward({c.given_deg * kDegree, 0.9});
        EXPECT_NEAR(map.easting_m, utm.Forward({c.in_another_turn_deg * kDegree, 0.9}).easting_m, 1e-6);
        EXPECT_NEAR(utm.Inverse(map).longitude_rad, c.folded_deg * kDegree, 1e-12);
        EXPECT_NEAR(utm.CentralMeridian(), (6.0 * c.zone - 183.0) * kDegree, 1e-15);
        EXPECT_EQ(utm.FalseEasting(), 500000.0);
        for (const double off_the_map_deg : {-90.0, 90.0}) {  // finite, for a later test to refuse
            const MAP_POSITION far = utm.Forward({off_the_map_deg * kDegree, 0.0});
            EXPECT_TRUE(std::isfinite(far.easting_m) && std::isfinite(far.northing_m));
            EXPECT_GT((far.easting_m - 500000.0) * std::sin(off_the_map_deg * kDegree - utm.CentralMeridian()), 1e6);
        }
    }
}

TEST(UtmProjection, FoldsLatitudesBeyondThePole) {
    const double quarter_m = kUtmScale * KruegerForward(kWgs84.a_m, kWgs84.e2, 0.0, kPi / 2).northing_m;
    for (const double side : {1.0, -1.0}) {
        const UTM_PROJECTION zone33(kWgs84.a_m, kWgs84.e2, 33, side < 0.0);
        const double pole_m = (side < 0.0 ? 1e7 : 0.0) + side * quarter_m;
        const MAP_GEOGRAPHIC beyond = zone33.Inverse({500000.0, pole_m + side * 1000.0});
        const MAP_GEOGRAPHIC before = zone33.Inverse({500000.0, pole_m - side * 1000.0});
        EXPECT_NEAR(beyond.latitude_rad, before.latitude_rad, 1e-9);
        EXPECT_LT(side * beyond.latitude_rad, kPi / 2);
    }
}

}  // namespace
