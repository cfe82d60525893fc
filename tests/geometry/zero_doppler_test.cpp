#include "geometry/zero_doppler.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/kit/circular_orbit.h"
#include "tests/kit/least_place.h"

namespace {

TEST(ZeroDoppler, IsTheTimeOfLeastRange) {
    std::mt19937 random(20120305);
    SCOPED_TRACE("seed 20120305");
    std::uniform_real_distribution<double> inclination(0.1, 3.0);
    std::uniform_real_distribution<double> argument(-3.1, 3.1);
    std::uniform_real_distribution<double> angle(-0.1, 0.1);
    std::uniform_real_distribution<double> height(-1000.0, 9000.0);
    std::uniform_real_distribution<double> guess(-60.0, 60.0);
    for (int i = 0; i < 300; ++i) {
        const CIRCULAR_ORBIT<double> orbit = {7071000.0, inclination(random), 0.3, argument(random)};
        const CIRCULAR_ORBIT<long double> exact = {7071000.0L, orbit.inclination_rad, 0.3L, orbit.argument_rad};
        // Beside the track, up to 600 km off and 60 s ahead or behind.
        const VECTOR_3D<double> below = orbit.Position(600.0 * angle(random));
        const VECTOR_3D<double> across = CrossProduct(below, orbit.Velocity(0.0));
        const VECTOR_3D<double> aside = below + (angle(random) * Length(below) / Length(across)) * across;
        const VECTOR_3D<double> point = ((6371000.0 + height(random)) / Length(aside)) * aside;

        const ZERO_DOPPLER zero = SolveZeroDoppler(orbit, 0.0, point, guess(random), {-300.0, 300.0});
        const VECTOR_3D<long double> exact_point = {point.x, point.y, point.z};
        const auto squared_range = [&](long double t) {
            const VECTOR_3D<long double> sight = exact.Position(t) - exact_point;
            return DotProduct(sight, sight);
        };
        const long double least_s = LeastPlace(squared_range, -90, 90, 0.05L);
        EXPECT_TRUE(zero.converged);
        EXPECT_NEAR(zero.time_s, static_cast<double>(least_s), 2e-8);
        EXPECT_NEAR(zero.range_m, static_cast<double>(Length(exact.Position(least_s) - exact_point)), 1e-8);
        EXPECT_GE(DopplerResidual(orbit, 0.0, point, zero.time_s + 1.0), 0.0);
    }
}

/// Counts its evaluations; the Doppler slope A . (S - P) + V . V vanishes, the residual does not.
struct STANDING_ORBIT {
    mutable int evaluations = 0;
    CIRCULAR_STATE<double> State(double) const {
        ++evaluations;
        return {{7e6, 0.0, 0.0}, {1000.0, 0.0, 0.0}, {-1e6 / 6e5, 0.0, 0.0}};
    }
};

TEST(ZeroDoppler, EndsWithinTheWindowWhereThereIsNoSolution) {
    const STANDING_ORBIT orbit;
    const ZERO_DOPPLER zero = SolveZeroDoppler(orbit, 0.0, {6.4e6, 0.0, 0.0}, 5.0, {-10.0, 30.0});
    EXPECT_FALSE(zero.converged);
    EXPECT_EQ(zero.time_s, -10.0);
    EXPECT_EQ(orbit.evaluations, kZeroDopplerMaxIterations);
    EXPECT_EQ(zero.range_m, 6e5);
}

}  // namespace
