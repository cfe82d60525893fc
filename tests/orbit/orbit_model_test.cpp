#include <gmock/gmock.h>
#include <unistd.h>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/general_orbit.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/orbit_pools.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// What an attempt to read the orbit throws and logs; nothing when it succeeds.
std::string RefusalOf(const POOL_TEXT& text) {
    return ErrorAndLogOf([&] { (void)ReadOrbit(text); }, LOGGING_LEVEL::EXCEPTION);
}

struct ACCURACY {
    double position_m, velocity_m_s, acceleration_m_s2;
};

// 24 vectors every 10 s of a circular orbit (radius 7070 km, rate w = 1.06e-3 rad/s), asked in the middle third.
// Exact data: what remains is rounding (1e-9 m of a coordinate) and the error term of each method, for the local ones
// r (w h)^n times 1e-3 or less. Spline: 5/384 h^4 r w^4 = 1.2e-3 m, and what is left of its wrong ends.
constexpr ACCURACY kExact{1e-7, 1e-8, 1e-8};
constexpr ACCURACY kFit{1e-5, 1e-6, 1e-6};
const std::pair<const char*, ACCURACY> kAccuracies[] = {
    {"polynom", {1e-7, 1e-7, 1e-7}}, {"spline", {5e-3, 1e-3, 1e-2}}, {"polyfit_9", kFit},
    {"chebyshev_9", kFit},           {"localpolynom_0_8", kExact},   {"localpolyfit_7_9", kExact},
    {"hermite_0_8", kExact},         {"localchebyshev_7_9", kExact}, {"localhermite_0_8", kExact},
    {"everett_8", kExact},
};

/// Largest errors in the middle third of the samples.
ACCURACY ErrorsOf(const ORBIT_OF_POOL& orbit) {
    ACCURACY errors{};
    for (double t = 80.0; t <= 160.0; t += 0.37) {
        const ORBIT_STATE truth = CircularOrbit(t);
        const ORBIT_STATE state = orbit.State(t);
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
        for (const auto& [interpolation, c] : kAccuracies) {
            SCOPED_TRACE(std::string(type) + " " + interpolation);
            const ORBIT_OF_POOL orbit = ReadOrbit(OrbitPool({.type = type, .interpolation = interpolation}));
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
    const ORBIT_OF_POOL utc = ReadOrbit(OrbitPool({.type = "orbit_pool_double_utc"}));
    // 150 s after the reference with its leap second in between, which a plain calendar does not see.
    EXPECT_LT(Distance(utc.Position(UNIVERSAL_TIME::FromText("01-JAN-2017/00:00:29")), CircularOrbit(150.0).position_m),
              1e-6);
    const ORBIT_OF_POOL met = ReadOrbit(OrbitPool({.type = "orbit_pool_double_met"}));
    EXPECT_LT(
        Distance(met.Velocity(MISSION_ELAPSED_TIME::FromText("0013/00:00:30.5")), CircularOrbit(90.25).velocity_m_s),
        1e-6);
    const ORBIT_OF_POOL plain = ReadOrbit(OrbitPool({}));
    EXPECT_LT(Distance(plain.Position(ANY_TIME(1100.0)), CircularOrbit(100.0).position_m), 1e-6)
        << "the reference number is subtracted";
    EXPECT_THROW((void)plain.Position(UNIVERSAL_TIME{}), ERROR_ARGUMENT);
    EXPECT_THROW((void)utc.Position(ANY_TIME(100.0)), ERROR_ARGUMENT);
}

TEST(GeneralOrbit, TellsTheDistanceOfTwoReferences) {
    const ORBIT_OF_POOL utc = ReadOrbit(OrbitPool({.type = "orbit_pool_double_utc"}));
    const ORBIT_OF_POOL later =
        ReadOrbit(OrbitPool({.type = "orbit_pool_float_utc", .reference = "01-JAN-2017/00:00:00.500000"}));
    const ORBIT_OF_POOL plain = ReadOrbit(OrbitPool({}));
    EXPECT_TRUE(utc.HasReferenceOfSameKind(later)) << "another type, the same kind of time";
    EXPECT_DOUBLE_EQ(utc.SecondsFromReferenceOf(later), 121.5);
    EXPECT_FALSE(utc.HasReferenceOfSameKind(plain));
    EXPECT_THROW((void)utc.SecondsFromReferenceOf(plain), ERROR_ARGUMENT);
}

TEST(InterpolationText, GivesNameOrderAndCount) {
    using enum INTERPOLATION_ID;
    constexpr std::tuple<const char*, INTERPOLATION_ID, int, int> kCases[] = {
        {"localpolyfit_5_9", LOCALPOLYFIT, 5, 9},
        {"--localpolyfit:5;:9)7", LOCALPOLYFIT, 5, 9},
        {"hermite_x_6", HERMITE, -1, 6},
        {"polynom(99999999999999999999)", POLYNOM, -1, -1},
        {"localpolynom__4", LOCALPOLYNOM, -1, 8},
        {"chebyshev_012", CHEBYSHEV, 12, -1},
        {"everett", EVERETT, 6, -1},
        {"everett_0", EVERETT, 0, -1},
        {"polynom", POLYNOM, -1, -1},
        {"polyfit", POLYFIT, 9, -1},
        {"polyfit_100", POLYFIT, 100, -1},
        {"spline_4_5", SPLINE, -1, -1},
        {"localpolyfit", LOCALPOLYFIT, 7, 9},
        {"chebyshev", CHEBYSHEV, 9, -1},
        {"localchebyshev_3", LOCALCHEBYSHEV, 3, 9},
        {"localpolynom_0_2", LOCALPOLYNOM, -1, 2},
        {"localpolynom_0_100", LOCALPOLYNOM, -1, 100},
        {"hermite", HERMITE, -1, 4},
        {"hermite_0_1", HERMITE, -1, 1},
        {"localhermite", LOCALHERMITE, -1, 4},
    };
    for (const auto& [text, id, order, count] : kCases) {
        const INTERPOLATION_REQUEST request = ParseInterpolationText(text);
        EXPECT_EQ(std::tie(request.id, request.poly_fit_order, request.support_point_count), std::tie(id, order, count))
            << text;
    }
    EXPECT_THAT(LoggedBy([] { (void)ParseInterpolationText("localpolyfit_5"); }),
                AllOf(HasSubstr("PARAM : global : ORBIT: detected poly fit order: 5\n"),
                      HasSubstr("interpolation \"localpolyfit_5\" gives no support point count: 9 is used\n")));
}

TEST(InterpolationText, RefusesNamingPoolKeyAndText) {
    const std::pair<const char*, const char*> bad[] = {
        {"_,;:-()", "ORBIT: can not determine interpolation type from: _,;:-()\n"},
        {"Hermite_0_8", "GENERAL_ORBIT: can not convert Hermite to interpolation_id\n"},
        {"polyfit_101", "the poly fit order \"101\" is no number from 0 to 100\n"},
        {"polyfit_9.5", "the poly fit order \"9.5\" is no number"},
        {"polyfit_99999999999999999999", "is no number from 0 to 100\n"},
        {"localpolynom_0_1", "the support point count \"1\" is no number from 2 to 100\n"},
        {"localpolynom_0_101", "the support point count \"101\" is no number from 2 to 100\n"},
        {"localpolyfit_7_1", "the support point count \"1\" is no number from 2 to 100\n"},
        {"localchebyshev_7_1", "the support point count \"1\" is no number from 2 to 100\n"},
        {"localhermite_0_1", "the support point count \"1\" is no number from 2 to 100\n"},
        {"hermite_0_0", "the support point count \"0\" is no number from 1 to 100\n"},
    };
    for (const auto& [text, logged] : bad) {
        EXPECT_THAT(RefusalOf(OrbitPool({.interpolation = text})),
                    AllOf(HasSubstr(logged), StartsWith("wrong argument\n"),
                          HasSubstr("orbit.pool: key \"orbit_interpolation\": value \"" + std::string(text) +
                                    "\" is refused\n")));
    }
    EXPECT_THAT(RefusalOf(OrbitPool({.interpolation = "everett_3"})),
                AllOf(HasSubstr("orbit.pool: key \"orbit_interpolation\": value \"everett_3\" does not suit the 24 "
                                "state vectors at key \"times\" of "),
                      StartsWith("wrong argument\n")));
}

TEST(PoolOrbit, RefusesListsThatDoNotFitNamingFileAndKey) {
    struct FAULT {
        const char* what;
        std::function<void(POOL_TEXT&)> spoil;
        const char* logged;
        const char* type = "orbit_pool_double_double";
    };
    const auto vectors = [](const char* key, size_t count, const char* last) {
        return [=](POOL_TEXT& pool) {
            std::vector<std::string> items(count, "7e3");
            items.back() = last;
            pool.SetList(key, "FLT_15_V", items);
        };
    };
    const auto changed = [](const char* key, const std::string& from, const std::string& to) {
        return [=](POOL_TEXT& pool) {
            std::string entry = pool.Entry(key);
            pool.Set(key, entry.replace(entry.find(from), from.size(), to));
        };
    };
    const FAULT faults[] = {
        {"fewer velocities", vectors("velocities", 69, "7e3"),
         "POOL_ORBIT::ReadFromParameterPool::Number of coordinates in position and velocity disagree.\n"},
        {"no multiple of three",
         [&](POOL_TEXT& pool) {
             vectors("positions", 11, "1")(pool);
             vectors("velocities", 11, "1")(pool);
         },
         "key \"positions\": 11 numbers are no multiple of the three coordinates"},
        {"fewer times than vectors", vectors("times", 1, "4"), "key \"times\": 1 times, but "},
        {"a time twice", changed("times", "1013.5", "1003.5"),
         "key \"times\": state vector 1 (1003.5) is not later than the one before (1003.5)"},
        {"a time far away", changed("times", "1003.5", "-1e300"),
         "key \"times\": state vector 0: -1e+300 s is outside"},
        {"a time far from the reference", changed("times", "1003.5", "-1e10"),
         "key \"times\": state vector 0: -1.0000001e+10 s from the reference time are more than 1e+10 s"},
        {"a time that is none", changed("times", "1003.5", "nan"), "key \"times\""},
        {"a position in the wrong unit", vectors("positions", 72, "7e12"),
         "key \"positions\": state vector 23: 7e+12 is no coordinate of an Earth satellite"},
        {"a velocity that is none", vectors("velocities", 72, "inf"), "key \"velocities\""},
        {"a UTC text that is none", changed("times", "T23:58:13.500000", "T25:58:13.500000"),
         "orbit.pool: key \"times\": entry 1 \"2016-12-31T25:58:13.500000\" is no UTC time\n", "orbit_pool_double_utc"},
        {"float coordinates in a pool of doubles", changed("positions", "FLT_15_V", "FLT_6_V"), "positions"},
        {"no reference time", [](POOL_TEXT& pool) { pool.Remove("orbit_reference_time"); }, "orbit_reference_time"},
        {"an unknown type", [](POOL_TEXT& pool) { pool.SetText("orbit_representation", "orbit_pool_double"); },
         "GENERAL_ORBIT: can not convert orbit_pool_double to orbit_type_id\n"},
    };
    for (const auto& [what, spoil, logged, type] : faults) {
        SCOPED_TRACE(what);
        POOL_TEXT pool = OrbitPool({.type = type});
        spoil(pool);
        EXPECT_THAT(RefusalOf(pool),
                    AllOf(HasSubstr(logged), HasSubstr("orbit.pool"), MatchesRegex("[a-z][a-z -]+\n(.|\n)*")));
    }
}

TEST(PoolOrbit, TakesWhatASatelliteCouldJustHave) {
    POOL_TEXT pool = OrbitPool({.interpolation = "polynom", .reference = "0", .count = 2});
    pool.SetList("times", "FLT_15_V", {"-1e10", "1e10"});
    pool.SetList("positions", "FLT_15_V", std::vector<std::string>(6, "1e9"));
    pool.SetList("velocities", "FLT_15_V", std::vector<std::string>(6, "-1e6"));
    EXPECT_EQ(RefusalOf(pool), "");
}

TEST(PoolOrbit, TellsEveryBadMetTextAndEndsAfterTheList) {
    POOL_TEXT pool = OrbitPool({.type = "orbit_pool_double_met", .count = 4});
    std::vector<std::string> items = TimeItems({.type = "orbit_pool_double_met", .count = 4});
    items[1] = "\"+0012/24:00:13.750000\"";
    items[3] = "\"12.5\"";
    pool.SetList("times", "STR_V", items);
    EXPECT_THAT(RefusalOf(pool),
                MatchesRegex("data error\nEXCEP : global : MET_SCANNER: [^\n]*\n"
                             "ALARM : global : [^\n]*key \"times\": entry 1 \"[^\n]*24:00:13.750000\" is no MET time\n"
                             "EXCEP : global : MET_SCANNER: [^\n]*\n"
                             "ALARM : global : [^\n]*entry 3 \"12.5\" is no MET time\n"));
    POOL_TEXT utc = OrbitPool({.type = "orbit_pool_double_utc", .count = 4});
    utc.SetList("times", "STR_V", std::vector<std::string>(4, "\"12.5\""));
    EXPECT_EQ(CountOf("\" is no UTC time\n", RefusalOf(utc)), 1) << "the first one ends the list";
}

TEST(PoolOrbit, AsksForEnoughStateVectors) {
    const std::pair<const char*, int> fewest[] = {
        {"hermite_0_8", 8}, {"hermite_0_1", 2}, {"everett_6", 7}, {"polyfit_9", 2}, {"localhermite_0_8", 2}};
    for (const auto& [interpolation, count] : fewest) {
        EXPECT_EQ(RefusalOf(OrbitPool({.interpolation = interpolation, .count = count})), "");
        EXPECT_THAT(
            RefusalOf(OrbitPool({.interpolation = interpolation, .count = count - 1})),
            HasSubstr("orbit.pool: key \"times\": " + std::to_string(count - 1) + " state vectors are too few"));
    }
}

TEST(GeneralOrbit, TellsTheKindOfAReferenceTimeByItsForm) {
    const std::string kUtcBeforeBlanks = "05-MAR-2012/14:03:07" + std::string(200, ' ');
    const std::tuple<const char*, const char*, const char*> references[] = {
        {"orbit_pool_double_double", "12.5", "INFO  : global : GENERAL_ORBIT: float reference time detected: 12.5\n"},
        {"orbit_pool_double_double", " 12.5 \t", "float reference time detected: 12.5\n"},
        {"orbit_pool_double_double", "   ", "TIME: \"   \" is no number of seconds\n"},
        {"orbit_pool_double_double", "1 2", "TIME: \"1 2\" is no number of seconds\n"},
        {"orbit_pool_double_utc", kUtcBeforeBlanks.c_str(),
         "UTC reference time detected: 05-MAR-2012/14:03:07.000000\n"},
        {"orbit_pool_double_met", "0001/00:00:00.000000",
         "GENERAL_ORBIT: MET reference time detected: +0001/00:00:00.000000\n"},
        {"orbit_pool_double_utc", "12.5",
         "ORBIT: the reference time 12.5 is plain seconds, but the times of orbit_pool_double_utc are UTC\n"},
        {"orbit_pool_double_double", "", "TIME: \"\" is no number of seconds\n"},
    };
    for (const auto& [type, text, logged] : references) {
        ORBIT_OF_POOL orbit(type, "polynom");
        EXPECT_THAT(ErrorAndLogOf([&] { orbit.SetReferenceTime(text); }), HasSubstr(logged));
    }
    EXPECT_THAT(RefusalOf(OrbitPool({.reference = "0001/00:00:00"})),
                AllOf(StartsWith("wrong argument\n"),
                      HasSubstr("key \"orbit_reference_time\": value \"0001/00:00:00\" is refused\n")));
}

TEST(OrbitFactory, RefusesPairsWithoutAnOrbit) {
    for (const char* name : {"chebyshev", "localchebyshev", "hermite", "localhermite"}) {
        for (const char* type : {"orbit_mdb_double_double", "orbit_mdb_double_utc", "orbit_mdb_double_met"}) {
            EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(ORBIT_OF_POOL(type, name), ERROR_ARGUMENT); }),
                        HasSubstr("ORBIT: there is no orbit \"" + std::string(type) + "\" with the interpolation \"" +
                                  name + "\"\nALARM : global : ORBIT: can not determine type of core object\n"));
        }
    }
}

TEST(GeneralOrbit, AnswersInVectorsOfEitherKind) {
    PARAMETER_POOL pool(OrbitPool({}).Save());
    GENERAL_ORBIT<double, VECTOR<double>> orbit;
    orbit.ReadFromParameterPool(pool);
    const ORBIT_STATE state = orbit.State(100.0);
    const std::pair<VECTOR<double>, VECTOR_3D<double>> pairs[] = {
        {orbit.Position(100.0), state.position_m},
        {orbit.Velocity(ANY_TIME(1100.0)), state.velocity_m_s},
        {orbit.Acceleration(ANY_TIME(1100.0)), state.acceleration_m_s2}};
    for (const auto& [v, expected] : pairs) {
        ASSERT_EQ(v.Dimension(), 3);
        EXPECT_EQ((VECTOR_3D<double>{v[0], v[1], v[2]}), expected);
    }
}

TEST(OrbitBase, RefusesWhatAnOrbitHasNotTakenOver) {
    struct : ORBIT_BASE {
        using ORBIT_BASE::operator=;
    } bare;
    PARAMETER_POOL pool;
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"Clone()", [&] { (void)bare.Clone(); }},
        {"State(double)", [&] { (void)bare.State(0.0); }},
        {"FirstTime()", [&] { (void)bare.FirstTime(); }},
        {"LastTime()", [&] { (void)bare.LastTime(); }},
        {"StateVectorCount()", [&] { (void)bare.StateVectorCount(); }},
        {"PieceBounds()", [&] { (void)bare.PieceBounds(); }},
        {"SetReferenceTime(const ANY_TIME&)", [&] { bare.SetReferenceTime(0.0); }},
        {"ReferenceTime()", [&] { (void)bare.ReferenceTime(); }},
        {"CountFromNearbySecond()", [&] { bare.CountFromNearbySecond(); }},
        {"Zero()", [&] { (void)bare.Zero(); }},
        {"ReadFromParameterPool(PARAMETER_POOL&)", [&] { bare.ReadFromParameterPool(pool); }},
        {"SavePolynomial(const std::string&)", [&] { bare.SavePolynomial("nowhere"); }},
    };
    for (const auto& [name, operation] : operations) {
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(operation(), ERROR_NOT_IMPLEMENTED) << name; }),
                    HasSubstr("ALARM : global : ORBIT_BASE: " + std::string(name) + "\n"));
    }
}

TEST(GeneralOrbit, IsAssignedFromItsOwnTypeOnly) {
    const ORBIT_OF_POOL orbit = ReadOrbit(OrbitPool({}));
    ORBIT_OF_POOL copy;
    EXPECT_THROW((void)copy.Position(100.0), ERROR_ARGUMENT) << "without an orbit";
    EXPECT_THROW(copy = ORBIT_OF_POOL(), ERROR_ARGUMENT) << "nothing to copy";
    copy = orbit;
    copy = ReadOrbit(OrbitPool({.first_s = 50.0}));
    EXPECT_EQ(copy.FirstTime(), 50.0);
    EXPECT_EQ(orbit.FirstTime(), 3.5);
    EXPECT_THAT(
        LoggedBy([&] { EXPECT_THROW(copy = ReadOrbit(OrbitPool({.interpolation = "polynom"})), ERROR_ARGUMENT); }),
        HasSubstr("virtual GENERAL_ORBIT<T>& operator=( const GENERAL_ORBIT<T>& agen_orbit )\n"));
    EXPECT_EQ(copy.FirstTime(), 50.0) << "a refused assignment changes nothing";
}

TEST(GeneralOrbit, CopiesItsSetUp) {
    const POOL_TEXT text = OrbitPool({.type = "orbit_pool_double_utc", .interpolation = "localpolyfit_5_9"});
    const ORBIT_OF_POOL orbit = ReadOrbit(text);
    ORBIT_OF_POOL assigned("orbit_pool_double_utc", "localpolyfit_3_7");
    assigned = orbit;
    for (const ORBIT_OF_POOL& copy : {ORBIT_OF_POOL(orbit), assigned}) {
        EXPECT_EQ(copy.TypeId(), ORBIT_TYPE_ID::POOL_DOUBLE_UTC);
        EXPECT_EQ(copy.Interpolation().id, INTERPOLATION_ID::LOCALPOLYFIT);
        EXPECT_EQ(copy.Interpolation().poly_fit_order, 5);
        EXPECT_EQ(copy.Interpolation().support_point_count, 9);
        EXPECT_EQ(copy.Configuration().pool_file, orbit.Configuration().pool_file);
        EXPECT_EQ(copy.Configuration().value_key, "positions");
        EXPECT_EQ(copy.ReferenceTime(), ANY_TIME(UNIVERSAL_TIME::FromText(kUsualUtc)));
        EXPECT_EQ(copy.StateVectorCount(), 24);
        EXPECT_EQ(copy.Position(100.0).x, orbit.Position(100.0).x);
    }
}

TEST(GeneralOrbit, KeepsItsReferenceTimeOnceItHasStateVectors) {
    ORBIT_OF_POOL orbit = ReadOrbit(OrbitPool({}));
    EXPECT_THAT(
        LoggedBy([&] { EXPECT_THROW(orbit.SetReferenceTime("900"), ERROR_ARGUMENT); }),
        HasSubstr("the reference time can not become 900: it would move the 24 state vectors read with 1000\n"));
    EXPECT_EQ(orbit.FirstTime(), 3.5);
}

TEST(PoolOrbit, SaysWhichOrbitAndTimeBeforeTheHardStop) {
    for (const char* interpolation : {"hermite_0_4", "localhermite_0_4"}) {
        const ORBIT_OF_POOL orbit = ReadOrbit(OrbitPool({.interpolation = interpolation}));
        const auto query = [&] {
            dup2(STDERR_FILENO, STDOUT_FILENO);  // where the child's log goes, to the pipe that is matched
            (void)orbit.State(233.513);
        };
        EXPECT_EXIT(query(), testing::ExitedWithCode(1),
                    AllOf(HasSubstr("orbit.pool: " + std::string(interpolation) + " is asked for 233.513000 s after "),
                          HasSubstr("reach from 3.500000 s to 233.500000 s"),
                          HasSubstr("interpolation point outside of data constraints")));
    }
}

TEST(Orbit, SavesItsCheckTable) {
    const std::string path = testing::TempDir() + "/" + std::to_string(getpid()) + "_check_table";
    ReadOrbit(OrbitPool({.interpolation = "hermite_0_4", .count = 4})).SavePolynomial(path);
    std::ifstream file(path);
    std::string text((std::istreambuf_iterator<char>(file)), {});
    const size_t header = text.find('\n') + 1;
    EXPECT_EQ(text.substr(0, header), "|t [s]|x [m]|y [m]|z [m]|ix [m]|iy [m]|iz [m]|dx [m]|dy [m]|dz [m]|\n");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
    std::replace(text.begin(), text.end(), '|', ' ');
    std::istringstream numbers(text.substr(header));
    for (double t = 3.5; t < 40; t += 10) {
        const VECTOR_3D<double> p = CircularOrbit(t).position_m;
        for (const double expected : {t, p.x, p.y, p.z, p.x, p.y, p.z, 0.0, 0.0, 0.0}) {  // exact at its nodes
            double value = -1;
            numbers >> value;
            EXPECT_NEAR(value, expected, 1e-6 * std::fabs(expected)) << "at " << t;
        }
    }
    const std::string below_a_file = path + "/table";
    EXPECT_THAT(LoggedBy([&] {
                    EXPECT_THROW(ReadOrbit(OrbitPool({})).SavePolynomial(below_a_file), ERROR_CAN_NOT_CREATE_FILE);
                }),
                HasSubstr("ORBIT::SavePolynomial() can not create file: " + below_a_file + "\n"));
    EXPECT_THROW(ReadOrbit(OrbitPool({})).SavePolynomial("/dev/full"), ERROR_CAN_NOT_WRITE_FILE);
    std::remove(path.c_str());
}

}  // namespace
