#include "orbit/source/mdb_orbit.h"

#include <gmock/gmock.h>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "orbit/interpolation/local_interpolation.h"
#include "orbit/interpolation/polynom.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/orbit_pools.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

using LOCALPOLYNOM_OF_MDB =
    MDB_ORBIT<double, UNIVERSAL_TIME, LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>, POINT<double>>;

/// A database folder with one data file of 24 vectors every 10 s, in its folder of missions and data takes.
class ORBIT_DATABASE : public testing::Test {
  protected:
    /// @param kind "double", "utc" or "met"
    void WriteDatabase(const std::string& file, const std::string& kind) const {
        fs::create_directories(fs::path(file).parent_path());
        std::ofstream(fs::path(file).parent_path() / "format.dat")
            << "time : " << kind << "\nx : double\ny : double\nz : double\nvx : double\nvy : double\nvz : double\n";
        std::ofstream data(file);
        const std::string type = "orbit_pool_double_" + kind;
        const std::vector<std::string> times = TimeItems({.type = type});
        for (int i = 0; i < 24; ++i) {
            std::string time = times[static_cast<size_t>(i)];
            std::erase(time, '"');
            if (kind == "utc") time = UNIVERSAL_TIME::FromText(time).ToText();
            const ORBIT_STATE s = CircularOrbit(3.5 + 10 * i);
            data << "time : " << time << "\n  time : " << time << "\n";
            const std::pair<const char*, double> items[] = {{"x", s.position_m.x},    {"y", s.position_m.y},
                                                            {"z", s.position_m.z},    {"vx", s.velocity_m_s.x},
                                                            {"vy", s.velocity_m_s.y}, {"vz", s.velocity_m_s.z}};
            for (const auto& [key, value] : items) data << "  " << key << " : " << Digits(value, false) << "\n";
        }
    }

    POOL_TEXT PoolOf(const std::string& kind, const std::string& interpolation) const {
        POOL_TEXT pool;
        pool.SetText("orbit_representation", "orbit_mdb_double_" + kind);
        pool.SetText("orbit_interpolation", interpolation);
        pool.SetText("orbit_reference_time", kind == "utc" ? kUsualUtc : kind == "met" ? kUsualMet : "1000.0");
        pool.SetText("root_path", root_);
        const std::pair<const char*, const char*> ids[] = {
            {"mission_id", "1"},          {"tape_id_number", "42"},       {"tape_source_id", "2"},
            {"major_data_take_id", "17"}, {"minor_data_take_id", "1234"}, {"channel_id", "3"},
            {"orbit_source_id", "4"}};
        for (const auto& [key, value] : ids) pool.Set(key, std::string("INT_32 ") + value);
        return pool;
    }

    std::string UsualFile() const { return root_ + "/mission_1/dt_17_1234/hddc_42_sec/rest_3"; }

    TEMPORARY_FOLDER folder_;
    std::string root_ = folder_.Path("db");
};

/// Failure and log of an attempt to read.
std::string LogOfReading(const POOL_TEXT& text, ORBIT_OF_POOL& orbit) {
    PARAMETER_POOL pool(text.Save());
    return ErrorAndLogOf([&] { orbit.ReadFromParameterPool(pool); });
}

TEST_F(ORBIT_DATABASE, GivesTheOrbitInEveryTimeType) {
    for (const char* kind : {"double", "utc", "met"}) {
        SCOPED_TRACE(kind);
        WriteDatabase(UsualFile(), kind);
        for (const char* interpolation :
             {"polynom", "polyfit_9", "spline", "localpolynom_0_8", "localpolyfit_7_9", "everett_8"}) {
            const double bound_m = std::string(interpolation) == "spline" ? 5e-3 : 1e-5;  // its wrong ends
            ORBIT_OF_POOL orbit;
            EXPECT_THAT(LogOfReading(PoolOf(kind, interpolation), orbit),
                        AllOf(HasSubstr("mdb_orbit compiled without: TYPE_IS_STRING_VECTOR\n"),
                              HasSubstr("mdb file: " + UsualFile() + "\n")));
            for (double t = 80.0; t < 160.0; t += 1.7) {
                EXPECT_LT(Distance(orbit.Position(t), CircularOrbit(t).position_m), bound_m) << interpolation;
            }
        }
    }
}

TEST_F(ORBIT_DATABASE, IsFoundByIdsOrByAnExplicitPath) {
    WriteDatabase(root_ + "/unknown/dt_0_0/hddc_7_unknown/_9", "utc");
    POOL_TEXT unset = PoolOf("utc", "localpolynom_0_8");
    for (const char* key : {"mission_id", "tape_source_id", "major_data_take_id", "minor_data_take_id"}) {
        unset.Set(key, "INT_32 0");
    }
    unset.Set("tape_id_number", "INT_32 7");
    unset.Set("channel_id", "INT_32 9");
    unset.Remove("orbit_source_id");
    unset.SetText("mdb_orbit_data_file", "");  // empty: none
    ORBIT_OF_POOL orbit;
    const std::string log = LogOfReading(unset, orbit);
    EXPECT_THAT(log, HasSubstr("ORBIT: orbit_source_id is not set\n"));
    EXPECT_EQ(orbit.StateVectorCount(), 24) << log;

    WriteDatabase(root_ + "/elsewhere/orbit.mdb", "utc");
    POOL_TEXT explicit_path = PoolOf("utc", "localpolynom_0_8");
    explicit_path.SetText("mdb_orbit_data_file", root_ + "/elsewhere/orbit.mdb");
    for (const char* key : {"root_path", "mission_id", "tape_id_number", "channel_id"}) explicit_path.Remove(key);
    ORBIT_OF_POOL other;
    EXPECT_THAT(LogOfReading(explicit_path, other), HasSubstr("mdb file: " + root_ + "/elsewhere/orbit.mdb\n"));
    EXPECT_EQ(other.StateVectorCount(), 24);

    const std::pair<const char*, MDB_FILE> paths[] = {
        {"orbit.mdb", {".", "orbit.mdb"}}, {"/orbit.mdb", {"/", "orbit.mdb"}}, {"a/b/orbit", {"a/b", "orbit"}}};
    for (const auto& [path, expected] : paths) {
        MDB_LOCATION location;
        location.data_file = path;
        const MDB_FILE file = OrbitDataFile(location, "a.pool");
        EXPECT_EQ(std::tie(file.directory, file.file_name), std::tie(expected.directory, expected.file_name)) << path;
    }
    const std::pair<const ID_TEXT*, std::vector<std::string>> tables[] = {
        {MissionIds(), {"unknown", "mission_1", "mission_2", "mission_3", "mission_4"}},
        {OrbitSourceIds(), {"", "simu", "pred", "quik", "rest", "prec", "cali"}},
        {TapeSourceIds(), {"unknown", "pri", "sec"}}};
    for (const auto& [table, texts] : tables) {
        const int count = static_cast<int>(texts.size());
        for (int id = 0; id < count; ++id) EXPECT_EQ(TextOfId(table, id, "a.pool", "key"), texts[id]);
        for (const int none : {-1, count}) EXPECT_THROW((void)TextOfId(table, none, "a.pool", "key"), ERROR_DATA);
    }
}

TEST_F(ORBIT_DATABASE, RefusesWithFileAndReason) {
    const auto set = [](const char* key, const char* entry) { return [=](POOL_TEXT& pool) { pool.Set(key, entry); }; };
    // What is wrong, how, the error and a part of the log.
    const std::tuple<const char*, std::function<void(POOL_TEXT&)>, const char*, std::string> faults[] = {
        {"an unknown mission", set("mission_id", "INT_32 5"), "data error\n",
         "orbit.pool: key \"mission_id\": value 5 stands in no id table\n"},
        {"a negative number", set("channel_id", "INT_32 -3"), "", "key \"channel_id\": value -3 is negative\n"},
        {"no such file", set("channel_id", "INT_32 4"), "",
         "mdb file " + root_ + "/mission_1/dt_17_1234/hddc_42_sec/rest_4: can not open mdb-file\n"},
        {"a calendar time as plain seconds",
         [](POOL_TEXT& pool) {
             pool.SetText("orbit_representation", "orbit_mdb_double_double");
             pool.SetText("orbit_reference_time", "0");
         },
         "can not cast from UTC to double\n", "mdb file " + UsualFile() + ": can not cast from UTC to double\n"},
        {"an interpolation without orbit", [](POOL_TEXT& pool) { pool.SetText("orbit_interpolation", "hermite_0_8"); },
         "", "ORBIT: can not determine type of core object\n"},
        {"too few vectors", [](POOL_TEXT& pool) { pool.SetText("orbit_interpolation", "everett_24"); }, "data error\n",
         UsualFile() + ": key \"time\": 24 state vectors are too few, the interpolation everett needs 25\n"},
    };
    WriteDatabase(UsualFile(), "utc");
    for (const auto& [what, spoil, error, logged] : faults) {
        SCOPED_TRACE(what);
        POOL_TEXT pool = PoolOf("utc", "localpolynom_0_8");
        spoil(pool);
        ORBIT_OF_POOL orbit;
        EXPECT_THAT(LogOfReading(pool, orbit), AllOf(StartsWith(error), HasSubstr(logged)));
        EXPECT_THROW((void)orbit.FirstTime(), ERROR_ARGUMENT) << "no half-filled orbit";
    }
    constexpr ID_TEXT kUnsafe[] = {{0, ".."}, {1, "a/b"}, {-1, nullptr}};
    for (const int id : {0, 1}) EXPECT_THROW((void)TextOfId(kUnsafe, id, "a.pool", "mission_id"), ERROR_DATA);
}

TEST_F(ORBIT_DATABASE, NoticesAChangeBetweenOpenAndRead) {
    WriteDatabase(UsualFile(), "utc");
    LOCALPOLYNOM_OF_MDB orbit;
    ORBIT_CONFIGURATION configuration;
    configuration.mdb.data_file = UsualFile();
    orbit.SetConfiguration(configuration);
    orbit.SetInterpolation(ParseInterpolationText("localpolynom_0_8"));
    orbit.SetReferenceTime(UNIVERSAL_TIME::FromText(kUsualUtc));
    orbit.Open();
    std::ofstream(UsualFile(), std::ios::app) << "\n";
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(orbit.Read(), ERROR_DATA); }),
                HasSubstr("ORBIT: mdb file was changed between open() and read()\n"));
    orbit.Open();
    orbit.Read();
    EXPECT_EQ(orbit.StateVectorCount(), 24);
}

}  // namespace
