#include "geometry/calc_slave_time.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry/constants.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/orbit_pools.h"

namespace {

/// A point beside the track, below the satellite's place at the time.
VECTOR_3D<double> PointBeside(const CIRCULAR_ORBIT<double>& motion, double time_s = 12.5) {
    const VECTOR_3D<double> below = motion.Position(time_s);
    const VECTOR_3D<double> across = CrossProduct(below, motion.Velocity(time_s));
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

/// The ends of the data plus or minus an offset are rounded; hermite ends the process a last place outside.
TEST(CalcSlaveTime, NeverAsksOutsideTheDataWhateverTheOffset) {
    const CIRCULAR_ORBIT<double> motion;
    const POOL_TEXT text = OrbitPool({.reference = "0", .first_s = 17.123457}, MotionOf(motion));
    ORBIT_OF_POOL orbit;
    PARAMETER_POOL pool(text.Save());
    orbit.ReadFromParameterPool(pool);
    int rounded_outwards = 0;
    for (int i = 0; i < 200; ++i) {
        const double offset_s = (i % 2 == 0 ? 1.0 : -1.0) * (137.25 + 1.0371 * i);
        const ORBIT_HANDLE handle = {&orbit, offset_s};
        rounded_outwards += (orbit.FirstTime() - offset_s) + offset_s < orbit.FirstTime() ? 1 : 0;
        const TIME_WINDOW data = DataWindow(handle);
        EXPECT_GE(data.first_s + offset_s, orbit.FirstTime());
        EXPECT_LE(data.last_s + offset_s, orbit.LastTime());
        EXPECT_NEAR(data.first_s + offset_s, orbit.FirstTime(), 1e-12);
        EXPECT_NEAR(data.last_s + offset_s, orbit.LastTime(), 1e-12);
        // A first guess outside begins at the nearer end.
        const auto solution = ZeroDopplerInsideData(handle, PointBeside(motion, 60.0), i % 3 == 0 ? 1e4 : -1e4);
        ASSERT_TRUE(solution.has_value());
        EXPECT_NEAR(solution->time_s + offset_s, 60.0, 1.0);
    }
    EXPECT_GT(rounded_outwards, 20) << "the offsets show nothing";
}

/// A float orbit knows its place to half a metre: the step never falls below the tolerance.
void SolveOnFloatOrbit(int times) {
    const CIRCULAR_ORBIT<double> motion;
    const auto orbit = OrbitFrom(MotionOf(motion), "polyfit_9", "orbit_pool_float_double");
    double range_m = 0.0;
    for (int i = 0; i < times; ++i) (void)CalcSlaveTime({orbit.get(), 0.0}, PointBeside(motion), &range_m, -5.0);
}

TEST(CalcSlaveTime, LogsTheFirstTenFailuresOfAThreadAndCountsTheRest) {
    const std::string line = "iterations count 100 exceeded in CalcSlaveTime( t=";
    const std::string log = LoggedBy([&] {
        const CONVERGENCE_REPORT report;
        SolveOnFloatOrbit(25);
    });
    EXPECT_THAT(log, testing::HasSubstr(", Residuals: dt ="));
    EXPECT_EQ(CountOf(line, log), 10);
    EXPECT_THAT(log, testing::HasSubstr("CalcSlaveTime: 15 more solutions of this thread did not converge\n"));

    const std::string few = LoggedBy([&] {
        const CONVERGENCE_REPORT report;
        SolveOnFloatOrbit(10);
    });
    EXPECT_EQ(CountOf("more solutions", few), 0);
    EXPECT_EQ(CountOf(line, LoggedBy([&] { SolveOnFloatOrbit(12); })), 12);  // nobody counts
}

}  // namespace
