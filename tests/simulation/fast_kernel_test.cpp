// The kernel against its yardstick, the plain one: same result, quickly.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <random>

#include "benchmarks/plain_kernel/plain_kernel.h"
#include "geometry/calc_slave_time.h"
#include "geometry/zero_doppler_rows.h"
#include "simulation/area_rows.h"
#include "simulation/dem_reach.h"
#include "simulation/dem_row.h"
#include "simulation/prepared_scene.h"
#include "simulation/radar_solution.h"
#include "simulation/scene_lines.h"
#include "simulation/triangle_filler.h"
#include "tests/kit/environment_setting.h"
#include "tests/kit/log_capture.h"
#include "tests/simulation/test_scene.h"

namespace {

constexpr unsigned kSeed = 20120305;

constexpr const char* kInterpolations[] = {
    "polynom",     "polyfit_7",          "spline",      "localpolynom_0_8", "localpolyfit_5_9",
    "chebyshev_7", "localchebyshev_5_8", "hermite_0_8", "localhermite_0_5", "everett_8"};

void UseInterpolation(TEST_SCENE& s, const char* interpolation) {
    s.master_orbit = OrbitFrom(MotionOf(s.master_motion), interpolation);
    s.slave_orbit = OrbitFrom(MotionOf(s.slave_motion), interpolation);
    s.scene.master.orbit.orbit = s.master_orbit.get();
    s.scene.slave.orbit.orbit = s.slave_orbit.get();
}

/// Mountains that lean over each other in the image, and with `voids` samples that are no heights.
void MakeSteep(TEST_SCENE& s, bool voids) {
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> relief(-25, 25);
    std::uniform_int_distribution<int> chance(0, 400);
    for (int row = 0; row < s.scene.dem.rows; ++row) {
        for (int column = 0; column < s.scene.dem.columns; ++column) {
            const double hill = 150.0 * std::sin(0.31 * row) * std::cos(0.23 * column);
            short& height = s.heights.View()[row][column];
            height = static_cast<short>(height + hill + relief(random));
            if (voids && chance(random) == 0) height = -32768;
        }
    }
}

/// @param tolerance  beside the rounding to single precision
template <class T>
int Differences(const TEST_GRID<T>& fast, const TEST_GRID<T>& plain, double tolerance) {
    int different = 0;
    for (int row = 0; row < fast.View().rows; ++row) {
        for (int column = 0; column < fast.View().columns; ++column) {
            const double expected = plain.At(row, column);
            different += !(std::abs(fast.At(row, column) - expected) <= tolerance + 2.4e-7 * std::abs(expected));
        }
    }
    return different;
}

void ExpectSameGrids(const TEST_SCENE& fast, const TEST_SCENE& plain) {
    EXPECT_TRUE(fast.mask == plain.mask);
    EXPECT_EQ(Differences(fast.phase, plain.phase, 1e-4), 0);
    EXPECT_EQ(Differences(fast.shift_range, plain.shift_range, 1e-5), 0);
    EXPECT_EQ(Differences(fast.shift_azimuth, plain.shift_azimuth, 1e-5), 0);
    EXPECT_EQ(Differences(fast.x, plain.x, 1e-4), 0);
    EXPECT_EQ(Differences(fast.y, plain.y, 1e-4), 0);
    EXPECT_EQ(Differences(fast.z, plain.z, 1e-4), 0);
    EXPECT_EQ(Differences(fast.radar_dem, plain.radar_dem, 1e-4), 0);
}

template <class CHANGE>
void CompareKernels(const SCENE_REQUEST& request, CHANGE change) {
    TEST_SCENE plain(request);
    change(plain);
    PlainSimulateRows(plain.scene, plain.scene.simulated.first_row, plain.scene.simulated.last_row);
    EXPECT_GT(plain.MaskCount(), 0);
    for (const char* threads : {"1", "3"}) {
        SCOPED_TRACE(std::string(request.name) + ", threads " + threads);
        const ENVIRONMENT_SETTING parallel("PARALLEL", threads);
        TEST_SCENE fast(request);
        change(fast);
        fast.Run();
        ExpectSameGrids(fast, plain);
    }
}

constexpr SCENE_REQUEST kScenes[] = {
    {},
    {.name = "ascending, left", .argument_rad = 0.7, .look = -1.0},
    {.name = "UTM, Bessel, seven parameters", .argument_rad = 0.8, .kind = "utm", .bessel = true},
    {.name = "UTM south", .argument_rad = -0.5, .kind = "UTM", .height_at_corner_m = -300},
    {.name = "factors",
     .image_rows = 59,
     .image_columns = 71,
     .shift_azimuth_factor = 3,
     .shift_range_factor = 2,
     .earth_azimuth_factor = 2,
     .earth_range_factor = 5},
};

TEST(FastKernel, GivesTheProductsOfThePlainOne) {
    for (const SCENE_REQUEST& request : kScenes) {
        CompareKernels(request, [](TEST_SCENE&) {});
        CompareKernels(request, [](TEST_SCENE& s) { MakeSteep(s, false); });
        CompareKernels(request, [](TEST_SCENE& s) { MakeSteep(s, true); });
    }
    CompareKernels({.name = "bistatic"}, [](TEST_SCENE& s) { s.scene.bistatic = true; });
}

TEST(FastKernel, GivesTheProductsOfThePlainOneWithEveryInterpolation) {
    for (const char* interpolation : kInterpolations) {
        SCOPED_TRACE(interpolation);
        CompareKernels({}, [&](TEST_SCENE& s) { UseInterpolation(s, interpolation); });
    }
}

TEST(FastKernel, GivesTheSameBytesAtEveryVectorLevelOnAnyNumberOfThreads) {
    for (const SCENE_REQUEST& request : kScenes) {
        for (const bool bistatic : {false, true}) {
            if (bistatic && &request != kScenes) continue;
            std::unique_ptr<TEST_SCENE> first;
            for (const char* threads : {"1", "7", "90"}) {  // 90 rows: every row a block, every seam contested
                for (const VECTOR_LEVEL level : {VECTOR_LEVEL::PLAIN, VECTOR_LEVEL::AVX2, VECTOR_LEVEL::AVX512}) {
                    if (!MachineHas(level)) continue;
                    const ENVIRONMENT_SETTING parallel("PARALLEL", threads);
                    const ENVIRONMENT_SETTING vectors("VELMORA_VECTORS", TextOf(level));
                    auto scene = std::make_unique<TEST_SCENE>(request);
                    MakeSteep(*scene, true);
                    scene->scene.bistatic = bistatic;
                    scene->Run();
                    if (!first)
                        first = std::move(scene);
                    else
                        EXPECT_TRUE(scene->HasGridsOf(*first))
                            << request.name << ", " << threads << " threads, " << TextOf(level);
                }
            }
        }
    }
}

TEST(FastKernel, FillsByCellsThatReachTheLinesWhatItFillsByAll) {
    const auto make_plateau = [](TEST_SCENE& s) {  // seen far beside the image: no cell of some rows reaches it
        for (int row = 28; row < 70; ++row) std::fill_n(s.heights.View()[row], s.request.dem_size + 1, short{8000});
    };
    const std::function<void(TEST_SCENE&)> terrains[] = {[](TEST_SCENE& s) { MakeSteep(s, true); }, make_plateau};
    for (const SCENE_REQUEST& request : kScenes) {
        for (const auto& make_terrain : terrains) {
            TEST_SCENE whole(request);
            make_terrain(whole);
            whole.Run();
            for (const char* threads : {"1", "3"}) {
                const ENVIRONMENT_SETTING parallel("PARALLEL", threads);
                TEST_SCENE slabs(request);
                make_terrain(slabs);
                const DEM_REACH reach(slabs.scene);
                for (int first = 0; first < request.image_rows; first += 13) {
                    const int end = std::min(first + 13, request.image_rows);
                    SCENE slab = LinesOf(slabs.scene, first, end);
                    reach.LimitTo(first, end, request.image_columns, slab);
                    SimulateScene(slab);
                }
                EXPECT_TRUE(slabs.HasGridsOf(whole)) << request.name << ", " << threads << " threads";
            }
        }
    }
}

/// A fault in the vector code that the way one by one repairs is seen here alone.
TEST(FastKernel, LeavesNothingToBeSolvedOneByOne) {
    for (const VECTOR_LEVEL level : {VECTOR_LEVEL::PLAIN, VECTOR_LEVEL::AVX2, VECTOR_LEVEL::AVX512}) {
        if (!MachineHas(level)) continue;
        const ENVIRONMENT_SETTING vectors("VELMORA_VECTORS", TextOf(level));
        for (const char* interpolation : kInterpolations) {
            SCOPED_TRACE(interpolation);
            TEST_SCENE s({});
            UseInterpolation(s, interpolation);
            const ENVIRONMENT_SETTING parallel("PARALLEL", "3");
            SOLUTION_COUNTS counts;
            const std::string log = LoggedBy([&] { counts = s.Run(); }, LOGGING_LEVEL::DEBUG);
            // 91 x 91 samples towards two orbits; the rows where blocks meet are solved by both threads.
            EXPECT_EQ(counts.in_rows, 2 * 91 * (91 + 2));
            EXPECT_EQ(counts.one_by_one, 0);
            EXPECT_THAT(log, testing::HasSubstr(" - Solutions of DEM samples: 16926 in rows (" +
                                                std::string(TextOf(level)) + "), 0 one by one\n"));
        }
    }
    {
        TEST_SCENE s({});
        s.scene.bistatic = true;
        const ENVIRONMENT_SETTING parallel("PARALLEL", "1");
        const SOLUTION_COUNTS counts = s.Run();
        EXPECT_EQ(counts.in_rows, 3 * 91 * 91);  // and the travel times
        EXPECT_EQ(counts.one_by_one, 0);
    }
    // Single precision cannot be compiled: all goes the other way.
    TEST_SCENE s({});
    s.master_orbit = OrbitFrom(MotionOf(s.master_motion), "hermite_0_8", "orbit_pool_float_double");
    s.scene.master.orbit.orbit = s.master_orbit.get();
    const ENVIRONMENT_SETTING parallel("PARALLEL", "1");
    const SOLUTION_COUNTS counts = s.Run();
    EXPECT_EQ(counts.one_by_one, 91 * 91);
    EXPECT_EQ(counts.in_rows, 91 * 91);
}

/// Columns that all lie in one place: every triangle is a line.
TEST(FastKernel, TellsOfLinesAsOftenAsThePlainOne) {
    const auto flatten = [](TEST_SCENE& s) {
        s.scene.dem.x0 += 0.5 * s.request.dem_size * s.scene.dem.dx;
        s.scene.dem.dx *= 1e-9;  // all columns in one place, the middle
    };
    SCENE_REQUEST small;
    small.height_per_column_m = 0;
    TEST_SCENE plain(small);
    flatten(plain);
    TEST_SCENE fast(small);
    flatten(fast);
    const ENVIRONMENT_SETTING parallel("PARALLEL", "1");
    const int expected = CountOf("only line", LoggedBy([&] { PlainSimulateRows(plain.scene, 40, 42); }));
    fast.scene.simulated.first_row = 40;
    fast.scene.simulated.last_row = 42;
    const int told = CountOf("only line", LoggedBy([&] { fast.Run(); }));
    EXPECT_GT(expected, 0);
    EXPECT_EQ(told, expected);
}

TEST(ZeroDopplerRow, AgreesWithCalcSlaveTime) {
    TEST_SCENE s({});
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> index(-200.0, 300.0);
    std::vector<double> x, y, z;
    for (int i = 0; i < 333; ++i) {
        const VECTOR_3D<double> p = s.PointAt(index(random), index(random));
        x.push_back(p.x);
        y.push_back(p.y);
        z.push_back(p.z);
    }
    for (const char* interpolation : kInterpolations) {
        SCOPED_TRACE(interpolation);
        UseInterpolation(s, interpolation);
        // Guesses near and far, spans wide and so narrow that points leave them; offsets as those of other references.
        for (const auto& [guess_s, first_s, last_s] : {std::array{-0.04, -5.0, 5.0},
                                                       {-14.0, -20.0, 20.0},
                                                       {-90.04, -5.0, 5.0},
                                                       {-90.04, -0.05, 0.05},
                                                       {-0.04, -0.05, 0.05},
                                                       {3.0, -1.0, 1.0}}) {
            const double offset_s = guess_s < -50.0 ? 90.0 : guess_s < -10.0 ? 7.25 : 0.0;
            const COMPILED_ORBIT compiled(*s.master_orbit, first_s, last_s);
            const ROW_ORBIT orbit = {{s.master_orbit.get(), offset_s}, &compiled, guess_s};
            std::vector<double> time_s(x.size()), range_m(x.size());
            const int one_by_one = SolveZeroDopplerRow(ChosenVectorLevel(), orbit, {x.data(), y.data(), z.data()}, 3,
                                                       330, time_s.data(), range_m.data());
            EXPECT_TRUE(one_by_one == 0 || last_s < 5.0) << one_by_one;
            EXPECT_EQ(time_s[2], 0.0);
            for (std::size_t i = 3; i < x.size(); ++i) {
                double expected_m = 0.0;
                const double expected_s = CalcSlaveTime(orbit.handle, {x[i], y[i], z[i]}, &expected_m, guess_s);
                ASSERT_NEAR(time_s[i], expected_s, 1e-9) << i;
                ASSERT_NEAR(range_m[i], expected_m, 1e-8) << i;
            }
            // A point's solution is its own, whatever stands beside it.
            std::vector<double> alone_s(x.size()), alone_m(x.size());
            for (const int i : {3, 17, 200, 332}) {
                (void)SolveZeroDopplerRow(ChosenVectorLevel(), orbit, {x.data(), y.data(), z.data()}, i, 1,
                                          alone_s.data(), alone_m.data());
                EXPECT_EQ(alone_s[i], time_s[i]);
                EXPECT_EQ(alone_m[i], range_m[i]);
            }
        }
    }
}

TEST(AreaRows, GiveTheAnswerOfTheTestByAreas) {
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> coordinate(-20.0, 120.0);
    std::uniform_int_distribution<int> whole(0, 100);
    for (int trial = 0; trial < 300; ++trial) {
        SIMULATION_AREA area;
        const int count = trial % 4;
        for (int i = 0; i < count; ++i) {
            for (auto* list : {&area.q1, &area.q2, &area.q3, &area.q4}) {
                if (trial % 3 == 0) {
                    list->push_back({static_cast<double>(whole(random)), static_cast<double>(whole(random))});
                } else {
                    list->push_back({coordinate(random), coordinate(random)});
                }
            }
            if (trial % 7 == 0) area.q2.back() = area.q1.back();                                       // no area
            if (trial % 11 == 0) area.q3.back() = {area.q1.back().x + 1e-4, area.q1.back().y + 2e-5};  // a needle
        }
        const AREA_ROWS rows(area);
        std::vector<unsigned char> inside(90);
        for (int row = -5; row < 105; ++row) {
            rows.Mark(row, 7, inside);
            for (int column = 7; column < 97; ++column) {
                ASSERT_EQ(inside[column - 7] != 0, PlainIsInsideArea(area, column, row))
                    << "trial " << trial << ", column " << column << ", row " << row;
            }
        }
    }
}

TEST(DemRow, AgreesWithSamplesOneByOne) {
    for (const SCENE_REQUEST& request : kScenes) {
        SCOPED_TRACE(request.name);
        // Near its meridian, and so far away that the short series would not do.
        for (const double easting_m : {0.0, 2.5e6}) {
            TEST_SCENE s(request);
            if (s.scene.dem.utm) s.scene.dem.x0 += easting_m;
            MakeSteep(s, true);
            DEM_RANGE range = s.scene.simulated;
            range.first_column = 5;
            if (s.scene.dem.utm) range.last_column += 20;  // beyond the samples, where the edge goes on
            const DEM_ROW dem_row(s.scene.dem, range, ChosenVectorLevel());
            RADAR_ROW samples(range);
            for (samples.row = 0; samples.row < s.scene.dem.rows; samples.row += 13) {
                samples.positions_filled = false;
                dem_row.FillPositions(samples);
                for (int i = 0; i < samples.size; ++i) {
                    VECTOR_3D<double> p;
                    float height_m = 0.0F;
                    Get_Earth_Position_From_DEM(s.scene.dem, 5 + i, samples.row, p.x, p.y, p.z, &height_m);
                    ASSERT_NEAR(samples[QUANTITY::EARTH_X][i], p.x, 1e-8);
                    ASSERT_NEAR(samples[QUANTITY::EARTH_Y][i], p.y, 1e-8);
                    ASSERT_NEAR(samples[QUANTITY::EARTH_Z][i], p.z, 1e-8);
                    ASSERT_EQ(samples[QUANTITY::HEIGHT_M][i], height_m);
                }
            }
        }
    }
}

}  // namespace
