#include "geometry/calc_slave_time.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry/constants.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/orbit_pools.h"

namespace {

/// A point beside the track, below the satellite's place at t = 12.5 s.
VECTOR_3D<double> PointBeside(const CIRCULAR_ORBIT<double>& motion) {
    const VECTOR_3D<double> below = motion.Position(12.5);
    const VECTOR_3D<double> across = CrossProduct(below, motion.Velocity(12.5));
    const VECTOR_3D<double> aside = below + (0.06 * Length(below) / Length(across)) * across;
    return (6371000.0 / Length(aside)) * aside;
}

TEST(CalcSlaveTime, AgreesWithTheClosedFormForEveryInterpolation) {
    const CIRCULAR_ORBIT<double> motion;
    const VECTOR_3D<double> point = PointBeside(motion);
    const ZERO_DOPPLER truth = SolveZeroDoppler(motion, 0.0, point, 0.0, {-80.0, 80.0});
    for (const char* interpolation : {"hermite_0_8", "localpolynom_0_8", "polyfit_9"}) {
        SCOPED_TRACE(interpolation);
        const auto orbit = OrbitFrom(MotionOf(motion), interpolation);
        double range_m = 0.0;
        EXPECT_NEAR(CalcSlaveTime({orbit.get(), 0.0}, point, &range_m, -5.0), truth.time_s, 2e-8);
        EXPECT_NEAR(range_m, truth.range_m, 1e-4);
        // Counted from 100 s earlier.
        EXPECT_NEAR(CalcSlaveTime({orbit.get(), -100.0}, point, &range_m, 95.0), truth.time_s + 100.0, 2e-8);
    }
}

TEST(CalcSlaveTime, FindsSolutionsInsideTheDataOnly) {
    const CIRCULAR_ORBIT<double> motion;
    const auto orbit = OrbitFrom(MotionOf(motion), "hermite_0_8");  // ends the process when asked outside its data
    const ORBIT_HANDLE handle = {orbit.get(), 0.0};
    for (const double time_s : {-79.9, 0.0, 79.9}) {
        const std::optional<ZERO_DOPPLER> inside =
            ZeroDopplerInsideData(handle, (6371000.0 / 7071000.0) * motion.Position(time_s), 0.0);
        ASSERT_TRUE(inside.has_value()) << time_s;
        EXPECT_NEAR(inside->time_s, time_s, 0.5);  // straight below: no more than the Earth's turning in between
    }
    for (const double time_s : {-300.0, -82.0, 82.0, 300.0}) {
        EXPECT_FALSE(ZeroDopplerInsideData(handle, (6371000.0 / 7071000.0) * motion.Position(time_s), 0.0)) << time_s;
    }
}

/// A float orbit knows its place to half a metre: the step never falls below the tolerance.
void SolveOnFloatOrbit(int times) {
    const CIRCULAR_ORBIT<double> motion;
    const auto orbit = OrbitFrom(MotionOf(motion), "polyfit_9", "orbit_pool_float_double");
    double range_m = 0.0;
    for (int i = 0; i < times; ++i) (void)CalcSlaveTime({orbit.get(), 0.0}, PointBeside(motion), &range_m, -5.0);
}

int Count(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(CalcSlaveTime, LogsTheFirstTenFailuresOfAThreadAndCountsTheRest) {
    const std::string line = "iterations count 100 exceeded in CalcSlaveTime( t=";
    const std::string log = LoggedBy([&] {
        const CONVERGENCE_REPORT report;
        SolveOnFloatOrbit(25);
    });
    EXPECT_THAT(log, testing::HasSubstr(", Residuals: dt ="));
    EXPECT_EQ(Count(log, line), 10);
    EXPECT_THAT(log, testing::HasSubstr("CalcSlaveTime: 15 more solutions of this thread did not converge\n"));

    const std::string few = LoggedBy([&] {
        const CONVERGENCE_REPORT report;
        SolveOnFloatOrbit(10);
    });
    EXPECT_EQ(Count(few, "more solutions"), 0);
    EXPECT_EQ(Count(LoggedBy([&] { SolveOnFloatOrbit(12); }), line), 12);  // nobody counts
}

}  // namespace
