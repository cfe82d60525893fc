#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulation/prepared_scene.h"
#include "simulation/thread_count.h"
#include "simulation/triangle.h"
#include "tests/kit/environment_setting.h"
#include "tests/kit/log_capture.h"
#include "tests/simulation/test_scene.h"

namespace {

constexpr SCENE_REQUEST kDescendingRight = {};

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
