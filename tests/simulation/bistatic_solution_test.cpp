#include "simulation/bistatic_solution.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "benchmarks/plain_kernel/plain_bistatic.h"
#include "geometry/zero_doppler.h"
#include "lib/baselib/errors/error_exception.h"
#include "simulation/aperture_time.h"
#include "simulation/azimuth_shift_correction.h"
#include "simulation/common_time_axis.h"
#include "tests/kit/least_place.h"
#include "tests/kit/log_capture.h"
#include "tests/simulation/test_scene.h"
#include "time/time_axis.h"

namespace {

using POINT_LD = VECTOR_3D<long double>;
constexpr long double kC = 299792458.0L;

/// Two satellites in formation, in closed form.
struct FORMATION {
    CIRCULAR_ORBIT<long double> master;
    CIRCULAR_ORBIT<long double> slave;
};

CIRCULAR_ORBIT<double> Double(const CIRCULAR_ORBIT<long double>& orbit) {
    return {static_cast<double>(orbit.radius_m), static_cast<double>(orbit.inclination_rad),
            static_cast<double>(orbit.node_rad), static_cast<double>(orbit.argument_rad)};
}

FORMATION Formation(double argument_rad, double along_m, double across_m) {
    FORMATION f;
    f.master = {7071000.0L, 1.71L, 0.4L, argument_rad};
    f.slave = f.master;
    f.slave.argument_rad += along_m / f.master.radius_m;
    // Half the distance upwards, half sideways by turning the plane.
    f.slave.radius_m += static_cast<long double>(across_m) / 2;
    f.slave.node_rad += static_cast<long double>(across_m) / 2 / f.master.radius_m;
    return f;
}

/// Travel time master - point - slave of the echo received at t, iterated until it stands still.
long double TravelTime(const FORMATION& f, const POINT_LD& p, long double t) {
    const long double receive_s = Length(f.slave.Position(t) - p) / kC;
    long double travel_s = 2 * receive_s;
    for (int i = 0; i < 30; ++i) travel_s = Length(f.master.Position(t - travel_s) - p) / kC + receive_s;
    return travel_s;
}

/// Bandwidth over Doppler rate.
double Aperture(const CIRCULAR_ORBIT<double>& motion, const ACQUISITION_SCENE& slave,
                const VECTOR_3D<double>& point_m) {
    const ZERO_DOPPLER zero = SolveZeroDoppler(motion, 0.0, point_m, 0.0, {-80.0, 80.0});
    const CIRCULAR_STATE<double> s = motion.State(zero.time_s);
    return zero.range_m * (kSpeedOfLight / slave.carrier_frequency_hz) * slave.azimuth_bandwidth_hz /
           (2.0 *
            (DotProduct(s.position_m - point_m, s.acceleration_m_s2) + DotProduct(s.velocity_m_s, s.velocity_m_s)));
}

struct MINIMUM {
    long double receive_time_s;
    long double travel_s;
};

MINIMUM ShortestTravel(const FORMATION& f, const POINT_LD& p, long double near_s) {
    const long double least_s =
        LeastPlace([&](long double t) { return TravelTime(f, p, t); }, near_s - 5, near_s + 5, 1e-3L);
    return {least_s, TravelTime(f, p, least_s)};
}

/// What a monostatic slave would have measured.
struct EQUIVALENT {
    double range_m;
    double time_s;
};

/// Seconds by which the orbits' own axes are ahead of that of the scene.
struct OFFSETS {
    double master_s = 0.0;
    double slave_s = 0.0;
};

MOTION Ahead(const CIRCULAR_ORBIT<double>& orbit, double offset_s) {
    return [motion = MotionOf(orbit), offset_s](double t) { return motion(t - offset_s); };
}

/// A scene of orbits alone, and one ground point solved towards both.
class PAIR {
  public:
    PAIR(const FORMATION& f, double look, double height_m, const OFFSETS& offsets = {})
        : master_orbit_(OrbitFrom(Ahead(Double(f.master), offsets.master_s))),
          slave_orbit_(OrbitFrom(Ahead(Double(f.slave), offsets.slave_s))) {
        scene.master.orbit = {master_orbit_.get(), offsets.master_s};
        scene.slave.orbit = {slave_orbit_.get(), offsets.slave_s};
        scene.master.carrier_frequency_hz = scene.slave.carrier_frequency_hz = 9.65e9;
        scene.slave.azimuth_bandwidth_hz = 2600.0;
        scene.bistatic = true;
        const CIRCULAR_ORBIT<double> master = Double(f.master);
        point_m = geolocation_fast(master.Position(1.25), master.Velocity(1.25), look, height_m, 6356752.315, 6378137.0,
                                   0.0055, 0.0)
                      .point_m;
        master_time_s = CalcSlaveTime(scene.master.orbit, point_m, &master_range_m, 0.0);
        slave_time_s = CalcSlaveTime(scene.slave.orbit, point_m, &slave_range_m, 0.0);
    }

    [[nodiscard]] EQUIVALENT Solve(double aperture_s, const BISTATIC_SOLUTION::SETTINGS& settings = {}) const {
        const PREPARED_SCENE prepared(scene);
        BISTATIC_SOLUTION solution(prepared, settings);
        solution.Prepare(aperture_s);
        EQUIVALENT found = {slave_range_m, slave_time_s};
        const int one_by_one = solution.SolveRow({{&point_m.x, &point_m.y, &point_m.z},
                                                  &master_time_s,
                                                  &master_range_m,
                                                  &found.time_s,
                                                  &found.range_m,
                                                  4,
                                                  17},
                                                 0, 1);
        EXPECT_EQ(one_by_one, 0) << "in vectors, whatever the offsets";
        return found;
    }

    [[nodiscard]] POINT_LD Point() const { return {point_m.x, point_m.y, point_m.z}; }
    [[nodiscard]] double MiddleTime() const { return 0.5 * (master_time_s + slave_time_s); }
    /// The equivalent time that belongs to a receive time and its travel time.
    [[nodiscard]] double EquivalentTime(long double receive_time_s, long double travel_s) const {
        return static_cast<double>(master_range_m / kC + (receive_time_s - travel_s));
    }

    SCENE scene;
    VECTOR_3D<double> point_m{};
    double master_time_s = 0.0;
    double master_range_m = 0.0;
    double slave_time_s = 0.0;
    double slave_range_m = 0.0;

  private:
    std::unique_ptr<ORBIT_OF_POOL> master_orbit_;
    std::unique_ptr<ORBIT_OF_POOL> slave_orbit_;
};

TEST(BistaticSolution, FindsTheShortestTwoWayPath) {
    const struct {
        double argument_rad;  ///< 0.7 ascending, 2.2 descending
        double look;
        double along_m;
        double across_m;
        OFFSETS offsets;
    } cases[] = {
        {0.7, 1.0, 0.0, 0.0, {}},           {2.2, -1.0, 0.0, 0.0, {}},        {0.7, -1.0, 1e3, 100.0, {}},
        {0.7, 1.0, 0.0, 1e4, {11.0, 11.0}}, {2.2, 1.0, 100.0, 1e3, {0, -17}}, {2.2, -1.0, 1e4, 1e4, {-9.5, 20}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.along_m) + " along, across " + std::to_string(c.across_m));
        const FORMATION f = Formation(c.argument_rad, c.along_m, c.across_m);
        const PAIR pair(f, c.look, 1500.0, c.offsets);
        const double aperture_s = Aperture(Double(f.slave), pair.scene.slave, pair.point_m);
        const EQUIVALENT found = pair.Solve(aperture_s);
        const MINIMUM truth = ShortestTravel(f, pair.Point(), pair.MiddleTime());
        const double range_m = static_cast<double>(truth.travel_s * kC / 2);
        EXPECT_NEAR(found.range_m, range_m, 1e-6);
        EXPECT_NEAR(found.time_s, pair.EquivalentTime(truth.receive_time_s, truth.travel_s), 5e-7);

        // The same samples through an exact parabola.
        const long double half_s = static_cast<long double>(aperture_s) / 2;
        std::array<long double, 3> y{};
        for (int i = 0; i < 3; ++i) {
            const long double t = TravelTime(f, pair.Point(), pair.MiddleTime() + (i - 1) * half_s);
            y[i] = t * t;
        }
        const long double c1 = (y[2] - y[0]) / 2;
        const long double c2 = (y[0] + y[2]) / 2 - y[1];
        const long double travel_s = std::sqrt(y[1] - c1 * c1 / c2 / 4);
        EXPECT_NEAR(found.time_s, pair.EquivalentTime(pair.MiddleTime() - half_s * c1 / c2 / 2, travel_s), 1e-9);
        if (c.along_m == 0.0 && c.across_m == 0.0) {
            // The satellite moves on while the echo travels: the phase of one image with itself is not 0.
            const double wave_number = 4.0 * kPi * 9.65e9 / kSpeedOfLight;
            const double phase_rad = wave_number * (found.range_m - pair.master_range_m);
            EXPECT_NEAR(phase_rad, wave_number * (range_m - pair.master_range_m), 1e-3);
            EXPECT_GT(std::abs(phase_rad), 1e-3);
            EXPECT_LT(std::abs(phase_rad), 0.5);
        }
    }
}

TEST(BistaticSolution, AddsTheCorrectionPolynomial) {
    PAIR pair(Formation(0.7, 100.0, 100.0), 1.0, 0.0);
    const EQUIVALENT plain = pair.Solve(0.5);
    const double u = 2.0 * plain.range_m / kSpeedOfLight - 0.005;
    pair.scene.correction.fast_time_reference_s = 0.005;
    pair.scene.correction.coefficients = {3e-6, -1.5e-3, 0.0, 7e3, -1e4};
    const double correction_s = 3e-6 - 1.5e-3 * u + 7e3 * u * u * u - 1e4 * u * u * u * u;
    EXPECT_NEAR(pair.Solve(0.5).time_s, plain.time_s + correction_s, 1e-12);
    EXPECT_EQ(pair.Solve(0.5).range_m, plain.range_m);
}

TEST(AzimuthShiftCorrection, RefusesWhatMovesTheSlaveOutOfSight) {
    ACQUISITION_SCENE slave;
    slave.near_range_time_s = 0.0058;
    slave.far_range_time_s = 0.0060;
    EXPECT_NO_THROW(CheckAzimuthShiftCorrection({{}, 1e300}, slave));
    EXPECT_NO_THROW(CheckAzimuthShiftCorrection({{3e-6, -1.5e-3, 0.02, 0.0, 1e16}, 0.0058}, slave));
    const struct {
        std::vector<double> coefficients;
        double reference_s;
        const char* text;
    } cases[] = {
        {{101.0}, 0.0058, "element 0, 101,"},
        {{0.0, 0.0, 1e-3}, 1e300, "element 2, 0.001,"},
        {{std::numeric_limits<double>::infinity()}, 0.0, "element 0, inf,"},
        {{1.0}, std::numeric_limits<double>::quiet_NaN(), "fast_time_reference"},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(
            LoggedBy([&] {
                EXPECT_THROW(CheckAzimuthShiftCorrection({c.coefficients, c.reference_s}, slave), ERROR_PARAMETER);
            }),
            testing::HasSubstr(c.text));
    }
}

TEST(BistaticSolution, LowersTheOrderOnceForTooFewSamples) {
    const PAIR pair(Formation(0.7, 300.0, 200.0), 1.0, 0.0);
    // A line has no minimum.
    const std::string log =
        LoggedBy([&] { EXPECT_THROW((void)pair.Solve(0.5, {.sample_count = 2}), ERROR_ALGORITHM); });
    EXPECT_EQ(CountOf("POLYFIT: reduce polynomial fit order 2 -> 1\n", log), 1);
    EXPECT_THAT(log, testing::HasSubstr("DEM column 17, row 4"));
    // More samples than coefficients: a real least-squares fit, close to the parabola through three.
    EXPECT_NEAR(pair.Solve(0.5, {.sample_count = 5}).range_m, pair.Solve(0.5).range_m, 1e-6);
}

TEST(BistaticSolution, RefusesWhatHasNoSolution) {
    // Accelerating straight towards the point: the path has a maximum, no minimum.
    const auto falling = [](double t) {
        return ORBIT_STATE{{7e6 - 4.0 * t * t, 0.0, 0.0}, {-8.0 * t, 0.0, 0.0}, {-8.0, 0.0, 0.0}};
    };
    const std::unique_ptr<ORBIT_OF_POOL> orbit = OrbitFrom(falling);
    SCENE scene;
    scene.master.orbit = scene.slave.orbit = {orbit.get(), 0.0};
    const PREPARED_SCENE prepared(scene);
    BISTATIC_SOLUTION solution(prepared);
    const double places_m[] = {6.4e6, 0.0, 0.0};
    const double time_s = 0.0, range_m = 6e5;
    double slave_time_s = 0.0, slave_range_m = 6e5;
    const std::string log = LoggedBy([&] {
        EXPECT_THROW(solution.Prepare(0.0), ERROR_PARAMETER);
        EXPECT_THROW(solution.Prepare(1e30), ERROR_PARAMETER);
        solution.Prepare(0.5);
        EXPECT_THROW(
            (void)solution.SolveRow(
                {{&places_m[0], &places_m[1], &places_m[2]}, &time_s, &range_m, &slave_time_s, &slave_range_m, 34, 12},
                0, 1),
            ERROR_ALGORITHM);
    });
    EXPECT_THAT(log, testing::AllOf(testing::HasSubstr("aperture time 0 s"), testing::HasSubstr("column 12, row 34")));
}

TEST(BistaticSolution, TakesTheApertureOfTheDemCentre) {
    TEST_SCENE s({.dem_size = 90});
    s.scene.bistatic = true;
    EXPECT_NEAR(ReferenceAperture(s.scene), Aperture(s.slave_motion, s.scene.slave, s.PointAt(45, 45)), 1e-9);

    // 6000 km of DEM: its centre lies 1500 km and more beyond the state vectors, where the interpolation would end the
    // process if it were asked; the centre of the simulated part is taken.
    s.scene.dem.rows = 200000;
    s.scene.dem.heights.row_stride = 0;  // all of them alike
    s.scene.simulated = {20, 60, 10, 50};
    double beyond_s = 0.0;
    const std::string log = LoggedBy([&] { beyond_s = ReferenceAperture(s.scene); });
    EXPECT_THAT(log, testing::HasSubstr("the reference point is column 30, row 40\n"));
    EXPECT_NEAR(beyond_s, Aperture(s.slave_motion, s.scene.slave, s.PointAt(30, 40)), 1e-4 * beyond_s);
}

/// Three rows of blocks of points, on every interpolation and on one that can not be compiled.
TEST(BistaticSolution, GivesInRowsWhatItGivesPointByPoint) {
    TEST_SCENE s({.name = "bistatic", .argument_rad = 0.7, .look = -1.0});
    s.scene.bistatic = true;
    s.scene.slave.azimuth_bandwidth_hz = 2000.0;
    s.scene.correction = {{1e-6, 2e-3}, 0.0058};
    const std::pair<const char*, const char*> orbits[] = {
        {"polynom", "double"},     {"polyfit_7", "double"},          {"spline", "double"},
        {"chebyshev_7", "double"}, {"localhermite_0_5", "double"},   {"localpolynom_0_8", "double"},
        {"everett_8", "double"},   {"localchebyshev_5_8", "double"}, {"hermite_0_8", "float"}};
    for (const auto& [interpolation, type] : orbits) {
        SCOPED_TRACE(interpolation);
        const std::string type_of_pool = std::string("orbit_pool_") + type + "_double";
        s.slave_orbit = OrbitFrom(MotionOf(s.slave_motion), interpolation, type_of_pool);
        s.scene.slave.orbit.orbit = s.slave_orbit.get();
        std::vector<double> x, y, z, master_s, master_m, slave_s, slave_m;
        for (int i = 0; i < 133; ++i) {
            const VECTOR_3D<double> p = s.PointAt(0.6 * i, 90.0 - 0.4 * i);
            double range_m[2] = {};
            x.push_back(p.x);
            y.push_back(p.y);
            z.push_back(p.z);
            master_s.push_back(CalcSlaveTime(s.scene.master.orbit, p, &range_m[0], 0.0));
            slave_s.push_back(SolveZeroDoppler(s.slave_motion, 0.0, p, 0.0, {-80.0, 80.0}).time_s);
            range_m[1] = Length(s.slave_motion.Position(slave_s.back()) - p);
            master_m.push_back(range_m[0]);
            slave_m.push_back(range_m[1]);
        }
        const std::vector<double> zero_doppler_s = slave_s;
        const PREPARED_SCENE prepared(s.scene);
        BISTATIC_SOLUTION rows(prepared);
        rows.Prepare(ReferenceAperture(s.scene));
        EXPECT_EQ(rows.SolveRow({{x.data(), y.data(), z.data()},
                                 master_s.data(),
                                 master_m.data(),
                                 slave_s.data(),
                                 slave_m.data(),
                                 0,
                                 0},
                                2, 131),
                  std::string(type) == "float" ? 131 : 0);
        EXPECT_EQ(slave_s[1], zero_doppler_s[1]);
        PLAIN_BISTATIC plain(s.scene, ReferenceAperture(s.scene));
        for (int i = 2; i < 133; ++i) {
            const PLAIN_BISTATIC::EQUIVALENT expected =
                plain.Solve({x[i], y[i], z[i]}, master_s[i], master_m[i], zero_doppler_s[i]);
            ASSERT_NEAR(slave_m[i], expected.range_m, 1e-7) << i;
            ASSERT_NEAR(slave_s[i], expected.time_s, 1e-9) << i;
        }
        const std::string log = LoggedBy([&] { rows.LogStatistics(); }, LOGGING_LEVEL::TRACE);
        // The difference of the ranges is a good first guess: of most samples in the middle, where the paths hardly
        // change while the echo travels, it leaves nothing but rounding to the second step.
        int solutions = 0;
        for (int label = 1; label <= 3; ++label) {
            const std::string text = "\nTRACE : global : " + std::to_string(label) + " iterations: ";
            const std::size_t at = log.find(text);
            if (at != std::string::npos) solutions += std::stoi(log.substr(at + text.size()));
            EXPECT_TRUE(label != 2 || solutions > 65 || std::string(type) == "float") << log;
        }
        EXPECT_EQ(solutions, 3 * 131);
    }
}

std::vector<std::string> UtcTimes(const UNIVERSAL_TIME& zero) {
    std::vector<std::string> times;
    for (int i = 0; i < 17; ++i) {
        times.push_back(TIME_AXIS<UNIVERSAL_TIME>::ToText(TIME_AXIS<UNIVERSAL_TIME>::Plus(zero, -80.0 + 10.0 * i)));
    }
    return times;
}

TEST(CommonTimeAxis, CountsTheSlaveFromTheMastersInstant) {
    using AXIS = TIME_AXIS<UNIVERSAL_TIME>;
    const FORMATION f = Formation(0.7, 1000.0, 300.0);
    const UNIVERSAL_TIME master_zero = AXIS::FromText("31-DEC-2016/23:59:55.000000");
    const UNIVERSAL_TIME slave_zero = AXIS::FromText("01-JAN-2017/00:00:00.500000");  // a leap second between: 6.5 s
    const auto master_orbit = OrbitFrom(MotionOf(Double(f.master)), "hermite_0_8", "orbit_pool_double_utc",
                                        AXIS::ToText(master_zero), UtcTimes(master_zero));
    // The same motion, its state vectors at other instants.
    const CIRCULAR_ORBIT<double> slave = Double(f.slave);
    const auto later_orbit = OrbitFrom([&](double t) { return MotionOf(slave)(t + 6.5); }, "hermite_0_8",
                                       "orbit_pool_double_utc", AXIS::ToText(slave_zero), UtcTimes(slave_zero));
    const auto plain_orbit = OrbitFrom(MotionOf(slave));

    ACQUISITION_SCENE master;
    master.orbit = {master_orbit.get(), 0.0};
    ACQUISITION_SCENE same = master;
    EXPECT_EQ(LoggedBy([&] { CarrySlaveOntoMasterAxis(master, same); }, LOGGING_LEVEL::INFO), "");
    EXPECT_EQ(same.orbit.offset_s, 0.0);

    ACQUISITION_SCENE later;
    later.orbit = {later_orbit.get(), 0.0};
    later.first_azimuth_time_s = 3.0 - 6.5;
    later.last_azimuth_time_s = 4.0 - 6.5;
    EXPECT_THAT(LoggedBy([&] { CarrySlaveOntoMasterAxis(master, later); }, LOGGING_LEVEL::INFO),
                testing::HasSubstr("+6.500000 [s]\n"));
    EXPECT_EQ(later.first_azimuth_time_s, 3.0);
    EXPECT_EQ(later.last_azimuth_time_s, 4.0);
    const VECTOR_3D<double> ground = PAIR(f, 1.0, 0.0).point_m;
    const ZERO_DOPPLER truth = SolveZeroDoppler(slave, 0.0, ground, 0.0, {-80.0, 80.0});
    double range_m = 0.0;
    EXPECT_NEAR(CalcSlaveTime(later.orbit, ground, &range_m, 0.0), truth.time_s, 2e-8);
    EXPECT_NEAR(range_m, truth.range_m, 1e-4);

    ACQUISITION_SCENE plain;
    plain.orbit = {plain_orbit.get(), 0.0};
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(CarrySlaveOntoMasterAxis(master, plain), ERROR_PARAMETER); }),
                testing::HasSubstr("orbit_reference_time of the master is of the kind \"UTC\""));
}

}  // namespace
