#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "geometry/constants.h"
#include "geometry/geolocation_fast.h"
#include "lib/baselib/errors/error_exception.h"
#include "tests/kit/circular_orbit.h"
#include "tests/kit/log_capture.h"

namespace {

constexpr double kEquatorial_m = 6378137.0;
constexpr double kPolar_m = 6356752.315;

GEOLOCATION Locate(const CIRCULAR_ORBIT<double>& orbit, double look, double height_m, double fast_time_s,
                   double doppler_m_s = 0.0) {
    return geolocation_fast(orbit.Position(0.0), orbit.Velocity(0.0), look, height_m, kPolar_m, kEquatorial_m,
                            fast_time_s, doppler_m_s);
}

TEST(GeolocationFast, MeetsRangeDopplerAndEllipsoidOnBothSides) {
    const struct {
        double inclination_rad, argument_rad;
        double height_m, range_m, doppler_m_s;
    } cases[] = {
        {1.7, 0.6, 0.0, 850e3, 0.0},      {0.2, -2.9, -1000.0, 1100e3, 35.0}, {1.1, 1.5707, 9000.0, 740e3, -120.0},
        {2.6, -1.4, 9000.0, 1100e3, 0.0}, {1.7, 2.2, -1000.0, 850e3, -120.0}, {1.1, 0.0, 0.0, 740e3, 35.0},
    };
    for (const auto& c : cases) {
        const CIRCULAR_ORBIT<double> orbit = {7071000.0, c.inclination_rad, 1.1, c.argument_rad};
        const VECTOR_3D<double> s = orbit.Position(0.0);
        const VECTOR_3D<double> v = orbit.Velocity(0.0);
        const double a = kEquatorial_m + c.height_m;
        const double b = kPolar_m + c.height_m;
        for (const double look : {1.0, -1.0}) {
            SCOPED_TRACE(std::to_string(c.inclination_rad) + " " + std::to_string(look));
            const GEOLOCATION g = Locate(orbit, look, c.height_m, 2.0 * c.range_m / kSpeedOfLight, c.doppler_m_s);
            const VECTOR_3D<double>& p = g.point_m;
            const VECTOR_3D<double> sight = p - s;
            EXPECT_NEAR(Length(sight), c.range_m, 2e-8);
            EXPECT_NEAR(DotProduct(v, sight) / Length(sight), c.doppler_m_s, 2e-9);
            // Metres across the surface, to first order.
            EXPECT_NEAR(0.5 * a * ((p.x * p.x + p.y * p.y) / (a * a) + p.z * p.z / (b * b) - 1.0), 0.0, 1e-7);
            // Down x flight points to the right.
            EXPECT_GT(look * DotProduct(CrossProduct(-1.0 * s, v), sight), 0.0);
            EXPECT_NEAR(g.radius_m, Length(p), 1e-9);
            const double longitude_rad = g.longitude_deg * kRadiansPerDegree;
            EXPECT_NEAR(std::remainder(longitude_rad - std::atan2(p.y, p.x), kTwoPi), 0.0, 1e-8);
            EXPECT_TRUE(g.longitude_deg >= 0.0 && g.longitude_deg < 360.0);
            const double latitude_rad = std::atan2(p.z / (b * b), std::hypot(p.x, p.y) / (a * a));
            EXPECT_NEAR(g.latitude_deg * kRadiansPerDegree, latitude_rad, 1e-9);
            const VECTOR_3D<double> normal = {p.x / (a * a), p.y / (a * a), p.z / (b * b)};
            const double incidence_rad = std::acos(-DotProduct(normal, sight) / (Length(normal) * Length(sight)));
            EXPECT_NEAR(g.incidence_deg * kRadiansPerDegree, incidence_rad, 1e-8);
        }
    }
}

TEST(GeolocationFast, FailsWithItsTexts) {
    const CIRCULAR_ORBIT<double> orbit;
    const VECTOR_3D<double> s = orbit.Position(0.0);
    const VECTOR_3D<double> v = orbit.Velocity(0.0);
    const struct {
        VECTOR_3D<double> position_m, velocity_m_s;
        double fast_time_s;
        std::vector<std::string> texts;
    } cases[] = {
        {{0.0, 6000000.0, 0.0},
         v,
         0.005,
         {"geolocation_fast: satellite position lies within the earth!\n",
          "geolocation_fast: length of satellite position is: "}},
        {{0.0, 0.0, 7071000.0},
         {7500.0, 0.0, 0.0},
         0.005,
         {"geolocation_fast: determination of angle theta failed!\n"}},
        // shorter than the height
        {s,
         v,
         0.004,
         {"geolocation_fast: No intersection of earth ellipsoid and sphere around the satellite\n",
          "geolocation_fast: during iteration in step: 1\n"}},
        {s, v, 1e300, {"geolocation_fast: No intersection of earth ellipsoid"}},
        {s, 0.001 * s, 0.005, {"no part across the vertical"}},
        {s, v, -0.0055, {"geolocation_fast: convergence problem\n"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.texts[0]);
        const auto locate = [&] {
            (void)geolocation_fast(c.position_m, c.velocity_m_s, 1.0, 0.0, kPolar_m, kEquatorial_m, c.fast_time_s, 0.0);
        };
        const std::string log = LoggedBy([&] { EXPECT_THROW(locate(), ERROR_DATA); }, LOGGING_LEVEL::ALARM);
        for (const std::string& text : c.texts) EXPECT_THAT(log, testing::HasSubstr(text));
    }
}

TEST(GeolocationFast, WorksOverEveryMeridian) {
    for (const double y_m : {7071000.0, -7071000.0}) {  // x = 0, where the arc tangent has no quotient
        const GEOLOCATION g =
            geolocation_fast({0.0, y_m, 0.0}, {0.0, 0.0, 7500.0}, 1.0, 0.0, kPolar_m, kEquatorial_m, 0.0055, 0.0);
        EXPECT_NEAR(g.latitude_deg, 0.0, 1e-12);
        EXPECT_GT(g.point_m.y * y_m, 0.0);
        EXPECT_LT(g.point_m.x * y_m, 0.0) << "to the right of a flight north lies the east";
    }
}

/// Steep sight near the nadir: the law of cosines amplifies each change of the radius, so the iteration takes more
/// steps the steeper it is, and at last does not settle. Solutions that the 21st step would reach first are refused.
TEST(GeolocationFast, GivesUpAfterTheLastStep) {
    const CIRCULAR_ORBIT<double> orbit = {7071000.0, 1.2, 0.0, 0.7};
    const auto log_at = [&](double range_m) {
        return LoggedBy(
            [&] {
                try {
                    (void)Locate(orbit, 1.0, 0.0, 2.0 * range_m / kSpeedOfLight);
                } catch (const ERROR_DATA&) {  // told by the log, too
                }
            },
            LOGGING_LEVEL::TRACE);
    };
    double fails_m = Length(orbit.Position(0.0)) - kEquatorial_m;
    double converges_m = fails_m + 200e3;
    int most_steps = 0;
    std::string failure;
    while (converges_m - fails_m > 1e-6) {
        const double middle_m = 0.5 * (fails_m + converges_m);
        const std::string log = log_at(middle_m);
        int steps = 0;
        const size_t at = log.find("geolocation_fast: ");
        if (std::sscanf(log.c_str() + at, "geolocation_fast: %d iterations.", &steps) == 1) {
            converges_m = middle_m;
            most_steps = std::max(most_steps, steps);
        } else {
            fails_m = middle_m;
            if (log.find("convergence problem\n") != std::string::npos) failure = log;
        }
    }
    EXPECT_EQ(most_steps, 20);
    EXPECT_THAT(failure, testing::HasSubstr("geolocation_fast was called with look_direction 1 height 0 rpole "));
    EXPECT_THAT(failure, testing::HasSubstr("accuracy after 21 steps: "));
}

}  // namespace
