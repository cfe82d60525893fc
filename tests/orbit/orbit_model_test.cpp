#include <gmock/gmock.h>

#include <thread>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/orbit_factory.h"
#include "orbit/polynom.h"
#include "orbit/pool_orbit.h"
#include "tests/orbit/orbit_pools.h"
#include "tests/time/log_capture.h"

namespace {

using testing::HasSubstr;

ORBIT_OF_POOL Read(const POOL_TEXT& text) {
    PARAMETER_POOL pool(text.Save());
    ORBIT_OF_POOL orbit;
    orbit.ReadFromParameterPool(pool);
    return orbit;
}

/// What an attempt to read the orbit logs; "read" when it succeeds.
std::string RefusalOf(const POOL_TEXT& text) {
    std::string outcome;
    const std::string log = LoggedBy(
        [&] {
            try {
                (void)Read(text);
                outcome = "read";
            } catch (const ERROR_EXCEPTION& error) {
                outcome = "[" + error.Message() + "]";
            }
        },
        LOGGING_LEVEL::EXCEPTION);
    return log + outcome;
}

struct ACCURACY {
    const char* interpolation;
    double position_m;
    double velocity_m_s;
    double acceleration_m_s2;
};

// 24 vectors every 10 s of a circular orbit (radius 7070 km, rate w = 1.06e-3 rad/s), asked in the middle third.
// Exact data: what remains is rounding (1e-9 m of a coordinate) and the error term of each method, for the local ones
// r (w h)^n times 1e-3 or less. Spline: 5/384 h^4 r w^4 = 1.2e-3 m, and what is left of its wrong ends.
constexpr ACCURACY kAccuracies[] = {
    {"polynom", 1e-7, 1e-7, 1e-7},
    {"polyfit_9", 1e-5, 1e-6, 1e-6},
    {"spline", 5e-3, 1e-3, 1e-2},
    {"localpolynom_0_8", 1e-7, 1e-8, 1e-8},
    {"localpolyfit_7_9", 1e-7, 1e-8, 1e-8},
    {"chebyshev_9", 1e-5, 1e-6, 1e-6},
    {"localchebyshev_7_9", 1e-7, 1e-8, 1e-8},
    {"hermite_0_8", 1e-7, 1e-8, 1e-8},
    {"localhermite_0_8", 1e-7, 1e-8, 1e-8},
    {"everett_8", 1e-7, 1e-8, 1e-8},
};

/// Largest errors in the middle third of the samples.
ACCURACY ErrorsOf(const ORBIT_OF_POOL& orbit) {
    ACCURACY errors{};
    for (double t = 80.0; t <= 160.0; t += 0.37) {
        const ORBIT_STATE truth = CircularOrbit(t);
        const ORBIT_STATE state = orbit.State(t);
        EXPECT_EQ(Distance(state.position_m, orbit.Position(t)), 0.0);
        EXPECT_EQ(Distance(state.velocity_m_s, orbit.Velocity(t)), 0.0);
        EXPECT_EQ(Distance(state.acceleration_m_s2, orbit.Acceleration(t)), 0.0);
        errors.position_m = std::max(errors.position_m, Distance(state.position_m, truth.position_m));
        errors.velocity_m_s = std::max(errors.velocity_m_s, Distance(state.velocity_m_s, truth.velocity_m_s));
        errors.acceleration_m_s2 =
            std::max(errors.acceleration_m_s2, Distance(state.acceleration_m_s2, truth.acceleration_m_s2));
    }
    return errors;
}

TEST(PoolOrbit, FollowsTheClosedFormInEveryTypeAndInterpolation) {
    for (const char* type : {"orbit_pool_double_double", "orbit_pool_double_utc", "orbit_pool_double_met",
                             "orbit_pool_float_double", "orbit_pool_float_utc", "orbit_pool_float_met"}) {
        for (const ACCURACY& c : kAccuracies) {
            SCOPED_TRACE(std::string(type) + " " + c.interpolation);
            const ORBIT_OF_POOL orbit = Read(OrbitPool({.type = type, .interpolation = c.interpolation}));
            EXPECT_EQ(orbit.StateVectorCount(), 24);
            EXPECT_DOUBLE_EQ(orbit.FirstTime(), 3.5);
            EXPECT_DOUBLE_EQ(orbit.LastTime(), 233.5);
            const ACCURACY errors = ErrorsOf(orbit);
            // Coordinates of 7e6 m are known to 0.25 m as float, times of 160 s to 8e-6 s (0.06 m along the orbit); the
            // derivatives of the rounding errors go with 1/h, or with what the fit makes of them.
            const bool is_float = std::string(type).find("pool_float") != std::string::npos;
            EXPECT_LT(errors.position_m, c.position_m + (is_float ? 2.0 : 0.0));
            EXPECT_LT(errors.velocity_m_s, c.velocity_m_s + (is_float ? 0.5 : 0.0));
            EXPECT_LT(errors.acceleration_m_s2, c.acceleration_m_s2 + (is_float ? 0.5 : 0.0));
        }
    }
}

TEST(PoolOrbit, TakesTimesOfItsOwnType) {
    const ORBIT_OF_POOL utc = Read(OrbitPool({.type = "orbit_pool_double_utc"}));
    // 150 s after the reference with its leap second in between, which a plain calendar does not see.
    EXPECT_LT(Distance(utc.Position(UNIVERSAL_TIME::FromText("01-JAN-2017/00:00:29")), CircularOrbit(150.0).position_m),
              1e-6);
    const ORBIT_OF_POOL met = Read(OrbitPool({.type = "orbit_pool_double_met"}));
    EXPECT_LT(
        Distance(met.Velocity(MISSION_ELAPSED_TIME::FromText("0013/00:00:30.5")), CircularOrbit(90.25).velocity_m_s),
        1e-6);
    const ORBIT_OF_POOL plain = Read(OrbitPool({}));
    EXPECT_LT(Distance(plain.Position(ANY_TIME(1100.0)), CircularOrbit(100.0).position_m), 1e-6)
        << "the reference number is subtracted";
    EXPECT_THROW((void)plain.Position(UNIVERSAL_TIME{}), ERROR_ARGUMENT);
    EXPECT_THROW((void)utc.Position(ANY_TIME(100.0)), ERROR_ARGUMENT);
}

TEST(GeneralOrbit, TellsTheDistanceOfTwoReferences) {
    const ORBIT_OF_POOL utc = Read(OrbitPool({.type = "orbit_pool_double_utc"}));
    const ORBIT_OF_POOL later =
        Read(OrbitPool({.type = "orbit_pool_float_utc", .reference = "01-JAN-2017/00:00:00.500000"}));
    const ORBIT_OF_POOL plain = Read(OrbitPool({}));
    const ORBIT_OF_POOL plain_later = Read(OrbitPool({.reference = "1012.5"}));
    EXPECT_TRUE(utc.HasReferenceOfSameKind(later)) << "another type, the same kind of time";
    EXPECT_DOUBLE_EQ(utc.SecondsFromReferenceOf(later), 121.5);
    EXPECT_DOUBLE_EQ(later.SecondsFromReferenceOf(utc), -121.5);
    EXPECT_DOUBLE_EQ(plain.SecondsFromReferenceOf(plain_later), 12.5);
    EXPECT_FALSE(utc.HasReferenceOfSameKind(plain));
    EXPECT_THROW((void)utc.SecondsFromReferenceOf(plain), ERROR_ARGUMENT);
}

struct TEXT_CASE {
    const char* text;
    INTERPOLATION_ID id;
    int order;
    int count;
};

TEST(InterpolationText, GivesNameOrderAndCount) {
    using enum INTERPOLATION_ID;
    constexpr TEXT_CASE kCases[] = {
        {"localpolyfit_5_9", LOCALPOLYFIT, 5, 9},
        {"localpolyfit(5,9)", LOCALPOLYFIT, 5, 9},
        {"--localpolyfit:5;:9)7", LOCALPOLYFIT, 5, 9},
        {"hermite_0_8", HERMITE, -1, 8},
        {"hermite_x_6", HERMITE, -1, 6},
        {"spline_x_y", SPLINE, -1, -1},
        {"polynom(99999999999999999999)", POLYNOM, -1, -1},
        {"polyfit_0", POLYFIT, 0, -1},
        {"localpolynom__4", LOCALPOLYNOM, -1, 8},
        {"chebyshev_012", CHEBYSHEV, 12, -1},
        {"hermite", HERMITE, -1, 4},
        {"everett", EVERETT, 6, -1},
        {"localchebyshev_3", LOCALCHEBYSHEV, 3, 9},
        {"localhermite_0_2", LOCALHERMITE, -1, 2},
        {"hermite_0_1", HERMITE, -1, 1},
    };
    for (const TEXT_CASE& c : kCases) {
        SCOPED_TRACE(c.text);
        const INTERPOLATION_REQUEST request = ParseInterpolationText(c.text);
        EXPECT_EQ(request.id, c.id);
        EXPECT_EQ(request.poly_fit_order, c.order);
        EXPECT_EQ(request.support_point_count, c.count);
    }
    EXPECT_THAT(LoggedBy([] { (void)ParseInterpolationText("localpolyfit_5_9"); }),
                AllOf(HasSubstr("PARAM : global : ORBIT: detected poly fit order: 5\n"),
                      HasSubstr("PARAM : global : ORBIT: detected support point count: 9\n")));
    EXPECT_THAT(
        LoggedBy([] { (void)ParseInterpolationText("localpolyfit_5"); }),
        HasSubstr(
            "INFO  : global : ORBIT: interpolation \"localpolyfit_5\" gives no support point count: 9 is used\n"));
}

TEST(InterpolationText, RefusesNamingPoolKeyAndText) {
    struct BAD {
        const char* text;
        const char* logged;
    };
    constexpr BAD kBad[] = {
        {"", "ORBIT: can not determine interpolation type from: \n"},
        {"_,;:-()", "ORBIT: can not determine interpolation type from: _,;:-()\n"},
        {"Hermite_0_8", "GENERAL_ORBIT: can not convert Hermite to interpolation_id\n"},
        {"polyfit_x", "the poly fit order \"x\" is no number from 0 to 100\n"},
        {"polyfit_101", "the poly fit order \"101\" is no number from 0 to 100\n"},
        {"polyfit_9.5", "the poly fit order \"9.5\" is no number"},
        {"polyfit_99999999999999999999", "is no number from 0 to 100\n"},
        {"localpolynom_0_1", "the support point count \"1\" is no number from 2 to 100\n"},
        {"hermite_0_0", "the support point count \"0\" is no number from 1 to 100\n"},
        {"localhermite_0_+4", "the support point count \"+4\" is no number from 2 to 100\n"},
    };
    for (const BAD& c : kBad) {
        const std::string log = RefusalOf(OrbitPool({.interpolation = c.text}));
        EXPECT_THAT(log, HasSubstr(c.logged));
        EXPECT_THAT(log, HasSubstr("orbit.pool: key \"orbit_interpolation\": value \"" + std::string(c.text) +
                                   "\" is refused\n"));
        EXPECT_THAT(log, HasSubstr("[wrong argument]"));
    }
    const std::string odd = RefusalOf(OrbitPool({.interpolation = "everett_3"}));
    EXPECT_THAT(
        odd, HasSubstr("EVERETT::Create: Everett interpolation only possible with even order, not for given order 3"));
    EXPECT_THAT(odd, HasSubstr("orbit.pool: key \"orbit_interpolation\": value \"everett_3\" does not suit the 24 "
                               "state vectors at key \"times\" of "));
}

TEST(PoolOrbit, RefusesListsThatDoNotFitNamingFileAndKey) {
    struct FAULT {
        const char* what;
        std::function<void(POOL_TEXT&)> spoil;
        const char* logged;
        const char* type = "orbit_pool_double_double";
    };
    const auto list = [](const char* key, const char* tag, std::vector<std::string> items) {
        return [=](POOL_TEXT& pool) { pool.SetList(key, tag, items); };
    };
    const auto changed = [](const char* key, const std::string& from, const std::string& to) {
        return [=](POOL_TEXT& pool) {
            std::string entry = pool.Entry(key);
            pool.Set(key, entry.replace(entry.find(from), from.size(), to));
        };
    };
    const std::vector<std::string> four_times = {"1", "2", "3", "4"};
    const std::vector<std::string> twelve(12, "1.0");
    const std::vector<std::string> eleven(11, "1.0");
    const FAULT faults[] = {
        {"12 positions and 9 velocities",
         [&](POOL_TEXT& pool) {
             pool.SetList("positions", "FLT_15_V", twelve);
             pool.SetList("velocities", "FLT_15_V", std::vector<std::string>(9, "1.0"));
         },
         "POOL_ORBIT::ReadFromParameterPool::Number of coordinates in position and velocity disagree.\n"},
        {"no multiple of three",
         [&](POOL_TEXT& pool) {
             pool.SetList("positions", "FLT_15_V", eleven);
             pool.SetList("velocities", "FLT_15_V", eleven);
         },
         "key \"positions\": 11 numbers are no multiple of the three coordinates"},
        {"fewer times than vectors", list("times", "FLT_15_V", four_times), "key \"times\": 4 times, but "},
        {"a time twice", changed("times", "1013.5", "1003.5"),
         "key \"times\": state vector 1 (1003.5) is not later than the one before (1003.5)"},
        {"times that go back", changed("times", "1023.5", "1010"), "state vector 2 (1010) is not later"},
        {"a time far away", changed("times", "1003.5", "-1e300"),
         "key \"times\": state vector 0: -1e+300 s is outside"},
        {"a time that is none", changed("times", "1003.5", "nan"), "key \"times\""},
        {"a position in the wrong unit",
         [&](POOL_TEXT& pool) {
             std::vector<std::string> positions(72, "7e6");
             positions[4] = "7e12";
             pool.SetList("positions", "FLT_15_V", positions);
         },
         "key \"positions\": state vector 1: 7e+12 is no coordinate of an Earth satellite"},
        {"a velocity that is none",
         [&](POOL_TEXT& pool) {
             std::vector<std::string> velocities(72, "7e3");
             velocities[71] = "inf";
             pool.SetList("velocities", "FLT_15_V", velocities);
         },
         "key \"velocities\""},
        {"a UTC text that is none", changed("times", "T23:58:13.500000", "T25:58:13.500000"),
         "orbit.pool: key \"times\": entry 1 \"2016-12-31T25:58:13.500000\" is no UTC time\n", "orbit_pool_double_utc"},
        {"a MET text that is none", changed("times", "/23:59:13", "/23:59:61"),
         "MET_SCANNER: seconds are outside 0..59\n", "orbit_pool_double_met"},
        {"float coordinates in a pool of doubles", changed("positions", "FLT_15_V", "FLT_6_V"), "positions"},
        {"no reference time", [](POOL_TEXT& pool) { pool.Remove("orbit_reference_time"); }, "orbit_reference_time"},
        {"no velocities", [](POOL_TEXT& pool) { pool.Remove("velocities"); }, "velocities"},
        {"an unknown type", [](POOL_TEXT& pool) { pool.SetText("orbit_representation", "orbit_pool_double"); },
         "GENERAL_ORBIT: can not convert orbit_pool_double to orbit_type_id\n"},
    };
    for (const FAULT& c : faults) {
        SCOPED_TRACE(c.what);
        POOL_TEXT pool = OrbitPool({.type = c.type});
        ASSERT_EQ(RefusalOf(pool), "read");
        c.spoil(pool);
        const std::string log = RefusalOf(pool);
        EXPECT_THAT(log, HasSubstr(c.logged));
        EXPECT_THAT(log, HasSubstr("orbit.pool"));
        EXPECT_THAT(log, HasSubstr("]"));
    }
}

TEST(PoolOrbit, AsksForEnoughStateVectors) {
    struct NEED {
        const char* interpolation;
        int fewest;
    };
    constexpr NEED kNeeds[] = {{"hermite_0_8", 8},      {"hermite_0_1", 2}, {"everett_6", 7}, {"everett_0", 2},
                               {"polynom", 2},          {"polyfit_9", 2},   {"spline", 2},    {"localhermite_0_8", 2},
                               {"localpolyfit_7_9", 2}, {"chebyshev_9", 2}};
    for (const NEED& c : kNeeds) {
        SCOPED_TRACE(c.interpolation);
        EXPECT_EQ(RefusalOf(OrbitPool({.interpolation = c.interpolation, .count = c.fewest})), "read");
        EXPECT_THAT(
            RefusalOf(OrbitPool({.interpolation = c.interpolation, .count = c.fewest - 1})),
            HasSubstr("orbit.pool: key \"times\": " + std::to_string(c.fewest - 1) + " state vectors are too few"));
    }
}

TEST(GeneralOrbit, TellsTheKindOfAReferenceTimeByItsForm) {
    struct REFERENCE {
        const char* type;
        const char* text;
        const char* logged;
    };
    constexpr REFERENCE kReferences[] = {
        {"orbit_pool_double_double", "12.5", "INFO  : global : GENERAL_ORBIT: float reference time detected: 12.5\n"},
        {"orbit_pool_double_met", "0001/00:00:00.000000",
         "GENERAL_ORBIT: MET reference time detected: +0001/00:00:00.000000\n"},
        {"orbit_pool_double_utc", "2012-03-05T14:03:07",
         "GENERAL_ORBIT: UTC reference time detected: 05-MAR-2012/14:03:07.000000\n"},
        {"orbit_pool_double_utc", "12.5",
         "ORBIT: the reference time 12.5 is plain seconds, but the times of orbit_pool_double_utc are UTC\n"},
        {"orbit_pool_double_double", "0001/00:00:00",
         "is MET, but the times of orbit_pool_double_double are plain seconds\n"},
        {"orbit_pool_double_met", "-0001/00:00:00.000000",
         "UTC_SCANNER: Error during scan of: -0001/00:00:00.000000\n"},
        {"orbit_pool_double_double", "20120305T140307", "TIME: \"20120305T140307\" is no number of seconds\n"},
        {"orbit_pool_double_double", "", "TIME: \"\" is no number of seconds\n"},
    };
    for (const REFERENCE& c : kReferences) {
        ORBIT_OF_POOL orbit(c.type, "polynom");
        const std::string log = LoggedBy([&] {
            try {
                orbit.SetReferenceTime(c.text);
            } catch (const ERROR_EXCEPTION&) {
            }
        });
        EXPECT_THAT(log, HasSubstr(c.logged)) << c.text;
        EXPECT_THAT(log, HasSubstr("DEBUG : global : GENERAL_ORBIT::SetReferenceTime(" + std::string(c.text) + ")\n"));
    }
    EXPECT_THAT(
        RefusalOf(OrbitPool({.reference = "0001/00:00:00"})),
        HasSubstr("orbit.pool: key \"orbit_reference_time\": value \"0001/00:00:00\" is refused\n[wrong argument]"));
}

TEST(OrbitFactory, HasARowForEveryPair) {
    const ORBIT_FACTORY_TABLE& table = OrbitFactoryTable();
    ASSERT_EQ(table.size(), 90U);
    const std::string no_mdb[] = {"chebyshev", "localchebyshev", "hermite", "localhermite"};
    for (size_t i = 0; i < table.size(); ++i) {
        const ORBIT_FACTORY_ROW& row = table[i];
        EXPECT_EQ(static_cast<size_t>(row.type_id), i / 10 + 1);
        EXPECT_EQ(static_cast<size_t>(row.interpolation_id), i % 10);
        EXPECT_EQ(OrbitTypeIdFromText(row.type_text), row.type_id);
        EXPECT_EQ(InterpolationIdFromText(row.interpolation_text), row.interpolation_id);
        const bool creates_nothing = std::string(row.type_text).starts_with("orbit_mdb") &&
                                     std::count(std::begin(no_mdb), std::end(no_mdb), row.interpolation_text) > 0;
        EXPECT_EQ(row.create() == nullptr, creates_nothing) << row.type_text << " " << row.interpolation_text;
    }
    std::string error;
    const auto make = [&] {
        try {
            ORBIT_OF_POOL("orbit_mdb_double_utc", "hermite_0_8");
        } catch (const ERROR_ARGUMENT&) {
            error = "argument";
        }
    };
    EXPECT_THAT(LoggedBy(make), HasSubstr("ALARM : global : ORBIT: can not determine type of core object\n"));
    EXPECT_EQ(error, "argument");
}

TEST(GeneralOrbit, IsAssignedFromItsOwnTypeOnly) {
    const ORBIT_OF_POOL orbit = Read(OrbitPool({}));
    ORBIT_OF_POOL copy;
    EXPECT_THROW((void)copy.Position(100.0), ERROR_ARGUMENT) << "without an orbit";
    EXPECT_THROW(copy = ORBIT_OF_POOL(), ERROR_ARGUMENT) << "nothing to copy";
    copy = orbit;
    EXPECT_EQ(Distance(copy.Position(100.0), orbit.Position(100.0)), 0.0);
    copy = Read(OrbitPool({.first_s = 50.0}));
    EXPECT_EQ(copy.FirstTime(), 50.0);
    EXPECT_EQ(orbit.FirstTime(), 3.5);

    const std::string signature = "virtual GENERAL_ORBIT<T>& operator=( const GENERAL_ORBIT<T>& agen_orbit )\n";
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(copy = Read(OrbitPool({.interpolation = "polynom"})), ERROR_ARGUMENT); }),
                HasSubstr(signature));
    EXPECT_EQ(copy.FirstTime(), 50.0) << "a refused assignment changes nothing";

    POOL_ORBIT<double, double, POLYNOM<double>, POINT<double>> polynom;
    const POOL_ORBIT<float, double, POLYNOM<float>, POINT<float>> other;
    const ORBIT_BASE& other_base = other;
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(polynom = other_base, ERROR_ARGUMENT); }),
                HasSubstr("virtual POOL_ORBIT<T,S,I,P>& operator=( const ORBIT_BASE& apool_orbit )\n"));
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW((void)polynom.Position(0.0), ERROR_ARGUMENT); }),
                HasSubstr("ORBIT: can not determine type of core object\n"));
}

TEST(Orbit, SavesItsCheckTable) {
    const std::string path = testing::TempDir() + "/" + std::to_string(getpid()) + "_check_table";
    Read(OrbitPool({.interpolation = "hermite_0_4", .count = 4})).SavePolynomial(path);
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line, "|t [s]|x [m]|y [m]|z [m]|ix [m]|iy [m]|iz [m]|dx [m]|dy [m]|dz [m]|");
    for (int i = 0; i < 4; ++i) {
        std::getline(file, line);
        double f[10];
        ASSERT_EQ(std::sscanf(line.c_str(), "| %lf | %le | %le | %le | %le | %le | %le | %le | %le | %le |", &f[0],
                              &f[1], &f[2], &f[3], &f[4], &f[5], &f[6], &f[7], &f[8], &f[9]),
                  10)
            << line;
        const VECTOR_3D<double> truth = CircularOrbit(3.5 + 10 * i).position_m;
        EXPECT_DOUBLE_EQ(f[0], 3.5 + 10 * i);
        EXPECT_NEAR(f[1], truth.x, 1e-6 * std::fabs(truth.x));
        EXPECT_NEAR(f[6], truth.z, 1e-6 * std::fabs(truth.z));
        EXPECT_EQ(f[7], 0.0) << "hermite is exact at its nodes";
        EXPECT_EQ(f[9], 0.0);
    }
    EXPECT_FALSE(std::getline(file, line));
    const std::string below_a_file = path + "/table";
    EXPECT_THAT(
        LoggedBy([&] { EXPECT_THROW(Read(OrbitPool({})).SavePolynomial(below_a_file), ERROR_CAN_NOT_CREATE_FILE); }),
        HasSubstr("ORBIT::SavePolynomial() can not create file: " + below_a_file + "\n"));
    EXPECT_THROW(Read(OrbitPool({})).SavePolynomial("/dev/full"), ERROR_CAN_NOT_WRITE_FILE);
    std::remove(path.c_str());
}

TEST(GeneralOrbit, AnswersManyThreadsAtOnce) {
    const ORBIT_OF_POOL orbit = Read(OrbitPool({.interpolation = "localhermite_0_6"}));
    const VECTOR_3D<double> expected = orbit.Position(77.7);
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 2000; ++k) {
                (void)orbit.State(10.0 + 0.1 * k);
                if (Distance(orbit.Position(77.7), expected) != 0.0) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
