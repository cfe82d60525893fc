#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "geometry/zero_doppler.h"
#include "lib/baselib/errors/error_exception.h"
#include "simulation/prepared_scene.h"
#include "simulation/thread_count.h"
#include "simulation/triangle.h"
#include "tests/kit/environment_setting.h"
#include "tests/kit/log_capture.h"
#include "tests/simulation/test_scene.h"

namespace {

constexpr SCENE_REQUEST kDescendingRight = {};
constexpr SCENE_REQUEST kSceneRequests[] = {
    kDescendingRight,
    {.name = "ascending, left, flat",
     .argument_rad = 0.7,
     .look = -1.0,
     .height_per_row_m = 0,
     .height_per_column_m = 0},
    {.name = "southern hemisphere, low inclination", .inclination_rad = 0.6, .argument_rad = -0.9},
    {.name = "high latitude", .inclination_rad = 1.6, .argument_rad = 1.4, .height_per_row_m = -3},
    {.name = "UTM, Bessel, seven parameters", .argument_rad = 0.8, .kind = "utm", .bessel = true},
    {.name = "UTM south", .argument_rad = -0.5, .kind = "UTM", .height_at_corner_m = -300},
};

/// The point of the inclined plane that a master pixel shows, by Newton's method in DEM indices on the closed-form
/// orbit: backwards, pixel to ground, where the kernel goes forwards.
struct GROUND {
    POINT<double> dem_index;
    VECTOR_3D<double> point_m;
    ZERO_DOPPLER master;
};

ZERO_DOPPLER Solve(const CIRCULAR_ORBIT<double>& motion, const VECTOR_3D<double>& point_m) {
    return SolveZeroDoppler(motion, 0.0, point_m, 0.0, {-80.0, 80.0});
}

POINT<double> PixelOf(const TEST_SCENE& s, const ZERO_DOPPLER& master) {
    return {(2.0 * master.range_m / kSpeedOfLight - s.scene.master.near_range_time_s) * s.scene.master.rsf_hz,
            (master.time_s - s.scene.master.first_azimuth_time_s) * s.scene.master.prf_hz};
}

GROUND GroundOf(const TEST_SCENE& s, const POINT<double>& pixel, POINT<double> start) {
    POINT<double> at = start;
    const auto miss = [&](const POINT<double>& p) {
        const POINT<double> reached = PixelOf(s, Solve(s.master_motion, s.PointAt(p.x, p.y)));
        return POINT<double>{reached.x - pixel.x, reached.y - pixel.y};
    };
    for (int i = 0; i < 8; ++i) {
        const POINT<double> m = miss(at);
        const POINT<double> mx = miss({at.x + 0.5, at.y});
        const POINT<double> my = miss({at.x, at.y + 0.5});
        const double a = 2.0 * (mx.x - m.x);
        const double b = 2.0 * (my.x - m.x);
        const double c = 2.0 * (mx.y - m.y);
        const double d = 2.0 * (my.y - m.y);
        const double determinant = a * d - b * c;
        at.x -= (d * m.x - b * m.y) / determinant;
        at.y -= (a * m.y - c * m.x) / determinant;
    }
    const VECTOR_3D<double> point_m = s.PointAt(at.x, at.y);
    return {at, point_m, Solve(s.master_motion, point_m)};
}

double FloatStep(double value) {
    return std::abs(value) * 1.2e-7;
}

TEST(PhaseKernel, AgreesWithBackwardInversionOfEveryPixel) {
    for (const SCENE_REQUEST& request : kSceneRequests) {
        SCOPED_TRACE(request.name);
        TEST_SCENE s(request);
        s.Run();
        ASSERT_EQ(s.MaskCount(), request.image_rows * request.image_columns);
        POINT<double> start = {0.5 * request.dem_size, 0.5 * request.dem_size};
        for (int row = 0; row < request.image_rows; row += 7) {
            for (int column = 0; column < request.image_columns; column += 9) {
                const GROUND ground = GroundOf(s, {static_cast<double>(column), static_cast<double>(row)}, start);
                start = ground.dem_index;
                const ZERO_DOPPLER slave = Solve(s.slave_motion, ground.point_m);
                const double wave_number = 4.0 * kPi * 5.405e9 / kSpeedOfLight;
                const double phase_rad = wave_number * (slave.range_m - ground.master.range_m);
                EXPECT_NEAR(s.phase.At(row, column), phase_rad, 0.01 + FloatStep(phase_rad)) << row << " " << column;
                const double slave_range =
                    (2.0 * slave.range_m / kSpeedOfLight - s.scene.slave.near_range_time_s) * s.scene.slave.rsf_hz;
                const double slave_azimuth = (slave.time_s - s.scene.slave.first_azimuth_time_s) * s.scene.slave.prf_hz;
                EXPECT_NEAR(s.shift_range.At(row, column), slave_range, 1e-4 + FloatStep(slave_range));
                EXPECT_NEAR(s.shift_azimuth.At(row, column), slave_azimuth, 1e-4 + FloatStep(slave_azimuth));
                EXPECT_NEAR(s.x.At(row, column), ground.point_m.x, 0.01 + FloatStep(ground.point_m.x));
                EXPECT_NEAR(s.y.At(row, column), ground.point_m.y, 0.01 + FloatStep(ground.point_m.y));
                EXPECT_NEAR(s.z.At(row, column), ground.point_m.z, 0.01 + FloatStep(ground.point_m.z));
                EXPECT_NEAR(s.radar_dem.At(row, column), s.HeightAt(ground.dem_index.x, ground.dem_index.y), 0.01);
            }
        }
        // Single precision inside the grids of doubles.
        EXPECT_EQ(s.shift_range.At(3, 5), static_cast<double>(static_cast<float>(s.shift_range.At(3, 5))));
        EXPECT_EQ(s.x.At(3, 5), static_cast<double>(static_cast<float>(s.x.At(3, 5))));
    }
}

TEST(PhaseKernel, GivesAPairOfOneImageNoPhaseAndItsOwnPositions) {
    TEST_SCENE s(kDescendingRight);
    s.scene.slave = s.scene.master;
    s.Run();
    for (int row = 0; row < s.request.image_rows; ++row) {
        for (int column = 0; column < s.request.image_columns; ++column) {
            EXPECT_EQ(s.phase.At(row, column), 0.0F);
            EXPECT_NEAR(s.shift_range.At(row, column), column, 1e-3);
            EXPECT_NEAR(s.shift_azimuth.At(row, column), row, 1e-3);
        }
    }
}

TEST(PhaseKernel, SubSamplesWithoutLeavingAGrid) {
    SCENE_REQUEST request = {
        .height_per_row_m = 1, .height_per_column_m = 3, .image_rows = 23, .image_columns = 17, .dem_size = 40};
    TEST_SCENE full(request);
    full.Run();
    for (int azimuth = 1; azimuth <= 5; ++azimuth) {
        for (int range = 1; range <= 5; ++range) {
            SCOPED_TRACE(std::to_string(azimuth) + " " + std::to_string(range));
            request.shift_azimuth_factor = request.earth_range_factor = azimuth;
            request.shift_range_factor = request.earth_azimuth_factor = range;
            TEST_SCENE s(request);
            s.Run();
            ASSERT_EQ(s.MaskCount(), 23 * 17);
            for (int row = 0; row < s.scene.shifts.range.rows; ++row) {
                for (int column = 0; column < s.scene.shifts.range.columns; ++column) {
                    EXPECT_EQ(s.shift_range.At(row, column), full.shift_range.At(row * azimuth, column * range));
                    EXPECT_EQ(s.shift_azimuth.At(row, column), full.shift_azimuth.At(row * azimuth, column * range));
                }
            }
            for (int row = 0; row < s.scene.earth.z.rows; ++row) {
                for (int column = 0; column < s.scene.earth.z.columns; ++column) {
                    EXPECT_EQ(s.z.At(row, column), full.z.At(row * range, column * azimuth));
                    EXPECT_EQ(s.radar_dem.At(row, column), full.radar_dem.At(row * range, column * azimuth));
                }
            }
        }
    }
}

TEST(PhaseKernel, WritesOnlyWhatIsWanted) {
    TEST_SCENE s(kDescendingRight);
    s.scene.shifts.range = s.scene.shifts.azimuth = {};
    s.scene.earth.x = {};
    s.scene.earth.radar_dem = {};
    s.Run();
    EXPECT_EQ(s.MaskCount(), s.request.image_rows * s.request.image_columns);
    EXPECT_EQ(s.shift_range.At(5, 5), 0.0);
    EXPECT_EQ(s.x.At(5, 5), 0.0);
    EXPECT_NE(s.y.At(5, 5), 0.0);
}

TEST(PhaseKernel, WalksTheCellsOfItsRowsAndOfTheAreaOnly) {
    TEST_SCENE upper(kDescendingRight);
    upper.scene.simulated.last_row = 45;
    upper.Run();
    TEST_SCENE lower(kDescendingRight);
    lower.scene.simulated.first_row = 45;
    lower.Run();
    const int all = kDescendingRight.image_rows * kDescendingRight.image_columns;
    EXPECT_GT(upper.MaskCount(), 0);
    EXPECT_LT(upper.MaskCount(), all);
    // The cells meet without a gap; the tolerance at the edge makes some pixels known to both.
    EXPECT_GE(upper.MaskCount() + lower.MaskCount(), all);

    // The same rows, cut out by the area: a cell counts as soon as one corner lies inside.
    TEST_SCENE area(kDescendingRight);
    area.scene.area = {{{-1.0, -1.0}}, {{-1.0, 44.2}}, {{91.0, -1.0}}, {{91.0, 44.2}}};
    area.Run();
    EXPECT_EQ(area.MaskCount(), upper.MaskCount());

    TEST_SCENE nowhere(kDescendingRight);
    // Quadrilaterals of no area hold nothing and divide nothing by zero.
    nowhere.scene.area = {{{5.0, 5.0}}, {{5.0, 5.0}}, {{9.0, 9.0}}, {{9.0, 9.0}}};
    nowhere.Run();
    EXPECT_EQ(nowhere.MaskCount(), 0);
}

TEST(PhaseKernel, DropsCellsWhoseFirstCornerIsFarOutside) {
    const struct {
        const char* name;
        double azimuth_pixels;  ///< by which the image is moved along track
        double range_pixels;
        bool simulated;
    } cases[] = {
        // The DEM covers the image and some 150 pixels around it in each direction.
        {"a little late", -80.0, 0.0, true}, {"a little near", 0.0, 60.0, true}, {"far late", -2000.0, 0.0, false},
        {"far early", 2000.0, 0.0, false},   {"far away", 0.0, -2000.0, false},  {"far near", 0.0, 2000.0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TEST_SCENE s(kDescendingRight);
        ACQUISITION_SCENE& m = s.scene.master;
        m.first_azimuth_time_s -= c.azimuth_pixels / m.prf_hz;
        m.last_azimuth_time_s -= c.azimuth_pixels / m.prf_hz;
        m.near_range_time_s -= c.range_pixels / m.rsf_hz;
        m.far_range_time_s -= c.range_pixels / m.rsf_hz;
        // A corner dropped by the extent test is not solved towards the slave, whose orbit is then never asked.
        s.scene.slave.orbit.orbit = c.simulated ? s.slave_orbit.get() : nullptr;
        s.Run();
        EXPECT_EQ(s.MaskCount() > 0, c.simulated);
    }
}

TEST(PhaseKernel, ReportsProgressFromTheMiddleThread) {
    const ENVIRONMENT_SETTING one("PARALLEL", "1");
    const auto log_of = [](int rows, unsigned thread_number) {
        TEST_SCENE s({.dem_size = 40});
        PREPARED_SCENE prepared(s.scene);
        DEM2PHASE_ARG arg;
        arg.start = 10;
        arg.length = static_cast<unsigned>(rows);
        arg.thread_number = thread_number;
        s.scene.simulated = {10, 10 + rows * ThreadCount(), s.scene.simulated.first_column,
                             s.scene.simulated.last_column};
        SIMULATION_PROGRESS progress({s.scene});
        return LoggedBy([&] { DEM2PHASE_Thread(prepared, arg, progress); }, LOGGING_LEVEL::TRACE);
    };
    const std::string few = log_of(4, 0);
    EXPECT_THAT(few, testing::HasSubstr("   - thread nr: 0  start: 10  length: 4\n"));
    EXPECT_THAT(few, testing::HasSubstr("ten percent are 1 lines\n"));
    for (const char* text : {"    * processed 25 %\n", "    * processed 50 %\n", "    * processed 75 %\n"}) {
        EXPECT_THAT(few, testing::HasSubstr(text));
    }
    EXPECT_THAT(few, testing::Not(testing::HasSubstr("    * processed 0 %")));
    EXPECT_THAT(few, testing::HasSubstr("BISTATIC_B: histogram of iterations:\n"));
    EXPECT_LT(few.find("   - end of thread nr: 0\n"), few.find("BISTATIC_B: "));
    const std::string more = log_of(25, 0);
    EXPECT_THAT(more, testing::HasSubstr("ten percent are 2 lines\n"));
    EXPECT_THAT(more, testing::HasSubstr("    * processed 96 %\n"));
    EXPECT_THAT(more, testing::Not(testing::HasSubstr("    * processed 4 %\n")));
    const ENVIRONMENT_SETTING two("PARALLEL", "2");
    EXPECT_THAT(log_of(4, 1), testing::HasSubstr("    * processed 25 %\n"));
    EXPECT_THAT(log_of(4, 0), testing::Not(testing::HasSubstr("processed")));
}

TEST(PhaseKernel, RefusesAnUnknownGridInItsThread) {
    TEST_SCENE s(kDescendingRight);
    s.scene.dem.kind = "LCC";
    const std::string log =
        LoggedBy([&] { EXPECT_EQ(TextThrownBy([&] { s.Run(); }), "error in thread execution"); }, LOGGING_LEVEL::ALARM);
    EXPECT_THAT(log, testing::HasSubstr("DEM grid must be UTM or GEO : LCC\n"));
}

TEST(Triangle, HoldsPointsALittleOutside) {
    const TRIANGLE t = {{0.0, 0.0}, {10.0, 0.0}, {0.0, 10.0}};
    const double area = TriangleArea(t.a, t.b, t.c);
    EXPECT_EQ(area, 50.0);
    const struct {
        POINT<double> p;
        bool inside;
    } cases[] = {
        {{2.0, 2.0}, true},    {{0.0, 0.0}, true}, {{5.0, 5.0}, true},
        {{5.0, -0.04}, true},   // outside by 0.2 of an edge's area of 50: (A1 + A2 + A3 - A) / A = 0.008
        {{5.0, -0.06}, false},  // 0.012
        {{-1.0, -1.0}, false},
    };
    for (const auto& c : cases) EXPECT_EQ(IsInsideTriangle(c.p, t, area), c.inside) << c.p.x << " " << c.p.y;
}

}  // namespace
