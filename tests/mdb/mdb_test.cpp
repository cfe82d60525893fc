#include "lib/baselib/mdb/mdb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "lib/baselib/logging/logging.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

/// What a failing call throws: a plain text. "" when it throws nothing.
template <class CALL>
std::string Thrown(CALL call) {
    try {
        call();
    } catch (const char* text) {
        return text;
    }
    return "";
}

template <class CALL>
std::string Logged(CALL call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

MDB_RECORD TypeOf(const std::vector<std::pair<std::string, RECORD_ITEM_TYPE>>& items) {
    ARRAY<RECORD_ITEM> list(0, static_cast<int>(items.size()));
    for (size_t i = 0; i < items.size(); ++i) list[static_cast<int>(i)] = RECORD_ITEM(items[i].first, items[i].second);
    return MDB_RECORD(list);
}

/// A directory of its own for each test, removed afterwards.
class MdbTest : public testing::Test {
  protected:
    MdbTest() {
        char name[] = "/tmp/mdb_test.XXXXXX";
        root_ = mkdtemp(name);
    }
    ~MdbTest() override { fs::remove_all(root_); }

    void WriteFile(const std::string& name, const std::string& text) { std::ofstream(root_ + "/" + name) << text; }
    std::string ReadFile(const std::string& name) {
        std::ostringstream text;
        text << std::ifstream(root_ + "/" + name).rdbuf();
        return text.str();
    }
    /// A database of records with these keys, and their position in the file as "n".
    void MakeDatabase(const std::vector<double>& keys) {
        MDB db;
        db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE);
        MDB_RECORD record = TypeOf({{"t", RECORD_ITEM_TYPE::DOUBLE}, {"n", RECORD_ITEM_TYPE::INT}});
        db.SetRecordType(record);
        int n = 0;
        for (const double key : keys) {
            record["t"].Set(key);
            record["n"].Set(n++);
            db.Write(record);
        }
    }

    std::string root_;
};

const std::string kExample =
    "time : 05-MAR-2012/14:03:07.123456\n"
    "  time : 05-MAR-2012/14:03:07.123456\n"
    "  orbit : -12\n"
    "  x :  7.0000000000000000e+06\n"
    "  y : -1.2500000000000000e-01\n"
    "  met : -0012/03:04:05.006007\n";

TEST_F(MdbTest, WritesTheDocumentedBytesAndReadsThemBack) {
    const MDB_RECORD type = TypeOf({{"time", RECORD_ITEM_TYPE::UTC},
                                    {"orbit", RECORD_ITEM_TYPE::INT},
                                    {"x", RECORD_ITEM_TYPE::DOUBLE},
                                    {"y", RECORD_ITEM_TYPE::DOUBLE},
                                    {"met", RECORD_ITEM_TYPE::MET}});
    MDB db;
    db.Open(root_ + "/mission/track", "orbit.mdb", MDB_OPEN_MODE::READ_WRITE);
    EXPECT_STREQ(Thrown([&] { db.GetRecordType(); }).c_str(), "MDB::GetRecordType(): record type is not set");
    db.SetRecordType(type);
    MDB_RECORD record = db.GetRecordType();
    record["time"].Set(UNIVERSAL_TIME::FromText("2012-03-05T14:03:07.123456"));
    record["orbit"].Set(-12);
    record["x"].Set(7e6);
    record["y"].Set(-0.125);
    record["met"].Set(MISSION_ELAPSED_TIME::FromText("-0012/03:04:05.006007"));
    db.Write(record);
    EXPECT_EQ(ReadFile("mission/track/orbit.mdb"), kExample);
    EXPECT_EQ(ReadFile("mission/track/format.dat"), "time : utc\norbit : int\nx : double\ny : double\nmet : met\n");

    MDB reader;
    reader.Open(root_ + "/mission/track", "orbit.mdb", MDB_OPEN_MODE::READ_ONLY);
    EXPECT_EQ(reader.GetPathInfo(), root_ + "/mission/track");
    ASSERT_TRUE(reader.Read());
    EXPECT_EQ(reader["time"].Utc(), UNIVERSAL_TIME::FromText("2012-03-05T14:03:07.123456"));
    EXPECT_EQ(static_cast<double>(reader["orbit"]), -12);
    EXPECT_EQ(ValueAs<double>(reader["x"]), 7e6);
    EXPECT_EQ(reader["y"].Double(), -0.125);
    EXPECT_EQ(ValueAs<MISSION_ELAPSED_TIME>(reader["met"]).ToText(), "-0012/03:04:05.006007");
    EXPECT_EQ(Thrown([&] { ValueAs<double>(reader["time"]); }), "can not cast from UTC to double");
    EXPECT_EQ(Thrown([&] { ValueAs<double>(reader["met"]); }), "can not cast from MET to double");
    EXPECT_FALSE(reader.Read());
    EXPECT_EQ(reader["orbit"].Int(), -12) << "the end of the file leaves the current record";
    reader.Rewind();
    EXPECT_EQ(Thrown([&] { reader.GetCurrentRecord(); }), "MDB::GetCurrentRecord(): no record data available");
    EXPECT_TRUE(reader.Read());
}

TEST_F(MdbTest, DoublesReadBackBitForBitAndLineUp) {
    for (const double value : {0.0, 1.0 / 3, -1e-320, 1.7976931348623157e308, -4.9e-324, 123456.789}) {
        RECORD_ITEM item("x", RECORD_ITEM_TYPE::DOUBLE);
        item.Set(value);
        const std::string text = item.ValueText();
        EXPECT_EQ(text.find('.'), 2u) << text;
        item.Set(99.0);
        item.SetFromText("\t " + text + " ");
        EXPECT_EQ(item.Double(), value);
    }
}

TEST_F(MdbTest, StopModesFindTheirRecords) {
    MakeDatabase({-5, 10, 20, 20, 20, 31, 1e5});
    struct CASE {
        MDB_STOP_MODE mode;
        double value;
        int record;  ///< -1: fails
        const char* text;
    };
    using enum MDB_STOP_MODE;
    const char* const kBefore =
        "MDB::GotoRecord( mdb_stop_before ) : you want me to give you the record before the first one\n";
    const char* const kAfter =
        "MDB::GotoRecord( mdb_stop_after ) : you want me to give you the record after the last one\n";
    const char* const kExact = "MDB::GotoRecord( mdb_stop_exact ) : search_value not found\n";
    const char* const kNearest = "(its really the nearest!)\n";
    const CASE cases[] = {
        {BEFORE, -5.5, -1, kBefore}, {BEFORE, -5, 0, ""},          {BEFORE, 9.9, 0, ""},
        {BEFORE, 20, 4, ""},         {BEFORE, 30, 4, ""},          {BEFORE, 1e9, 6, ""},
        {EXACT, -5, 0, ""},          {EXACT, 20, 2, ""},           {EXACT, 1e5, 6, ""},
        {EXACT, 25, -1, kExact},     {EXACT, -6, -1, kExact},      {EXACT, 1e6, -1, kExact},
        {AFTER, -6, 0, ""},          {AFTER, 10, 1, ""},           {AFTER, 11, 2, ""},
        {AFTER, 1e5, 6, ""},         {AFTER, 100001, -1, kAfter},  {NEAREST, 10, 1, kNearest},
        {NEAREST, -5, 0, kNearest},  {NEAREST, 15.1, 2, kNearest}, {NEAREST, 15, 1, kNearest},
        {NEAREST, 25, 4, kNearest},  {NEAREST, 1e5, 6, kNearest},
    };
    MDB db;
    db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    for (const CASE& one : cases) {
        SCOPED_TRACE(testing::Message() << StopModeText(one.mode) << " " << one.value);
        std::string thrown;
        const std::string log = Logged([&] { thrown = Thrown([&] { db.GotoRecord(one.value, one.mode); }); });
        EXPECT_THAT(log, *one.text == '\0' ? testing::Matcher<std::string>("")
                                           : testing::Matcher<std::string>(HasSubstr(one.text)));
        EXPECT_EQ(thrown.empty(), one.record >= 0);
        if (one.record >= 0) {
            EXPECT_EQ(db["n"].Int(), one.record);
        } else {
            db.Rewind();
        }
    }
    EXPECT_EQ(Thrown([&] { db.GotoRecord(25.0, EXACT); }), "search_value not found");
    EXPECT_EQ(Thrown([&] { db.GotoRecord(25.0, INVALID); }), "MDB::GotoRecord(): invalid stop mode");
    EXPECT_EQ(Thrown([&] { db.GotoRecord(25, EXACT); }), "MDB: RECORD_ITEM: value has not the type of the item");
    EXPECT_NE(Thrown([&] { db.GotoRecord(std::nan(""), NEAREST); }), "");

    db.GotoRecord(20.0, EXACT);
    ASSERT_TRUE(db.Read());
    EXPECT_EQ(db["n"].Int(), 3) << "reading goes on behind the record found";
}

TEST_F(MdbTest, NearestBeyondTheEndsExplainsItselfInFourLines) {
    MakeDatabase({1, 2, 3});
    MDB db;
    db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    const auto lines = [](const std::string& third, const std::string& fourth) {
        std::string text;
        for (const std::string& line : {std::string("MDB::GotoRecord( mdb_stop_nearest ) : "),
                                        std::string("the value you searched for can be far away .. "), third, fourth})
            text += "INFO  : global : " + line + "\n";
        return text;
    };
    EXPECT_EQ(Logged([&] { db.GotoRecord(0.9, MDB_STOP_MODE::NEAREST); }),
              lines("we are at the beginning of the data file ", "therefore I give you the first record "));
    EXPECT_EQ(db["n"].Int(), 0);
    EXPECT_EQ(Logged([&] { db.GotoRecord(3.1, MDB_STOP_MODE::NEAREST); }),
              lines("we reached the end of the data file ", "therefore I give you the last record "));
    EXPECT_EQ(db["n"].Int(), 2);
}

TEST_F(MdbTest, StopModesHaveTheirTexts) {
    for (const char* text : {"stop_before", "stop_exact", "stop_nearest", "stop_after"})
        EXPECT_STREQ(StopModeText(StopModeFromText(text)), text);
    EXPECT_EQ(StopModeFromText("invalid"), MDB_STOP_MODE::INVALID);
    EXPECT_EQ(StopModeFromText("Stop_before"), MDB_STOP_MODE::INVALID);
    EXPECT_STREQ(StopModeText(MDB_STOP_MODE::INVALID), "invalid");
}

TEST_F(MdbTest, CalendarKeysAreFoundByTheirOwnOrder) {
    MDB db;
    db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE);
    MDB_RECORD record = TypeOf({{"time", RECORD_ITEM_TYPE::UTC}});
    db.SetRecordType(record);
    for (const char* time :
         {"31-DEC-2011/23:59:59.999999", "01-JAN-2012/00:00:00.000000", "05-MAR-2012/14:03:07.000000"}) {
        record["time"].Set(UNIVERSAL_TIME::FromText(time));
        db.Write(record);
    }
    db.GotoRecord(UNIVERSAL_TIME::FromText("2012-01-01T00:00:00.000001"), MDB_STOP_MODE::NEAREST);
    EXPECT_EQ(db["time"].ValueText(), "01-JAN-2012/00:00:00.000000");
    db.GotoRecord(UNIVERSAL_TIME::FromText("2011-12-31T23:59:59.999999"), MDB_STOP_MODE::EXACT);
    EXPECT_EQ(db["time"].ValueText(), "31-DEC-2011/23:59:59.999999");
}

/// Bytes that this process has asked the system to read so far.
long long BytesRead() {
    std::ifstream io("/proc/self/io");
    std::string name;
    long long value = -1;
    io >> name >> value;
    return name == "rchar:" ? value : -1;
}

TEST_F(MdbTest, SearchesInHundredThousandRecordsTouchAFewPages) {
    constexpr int kRecords = 100000;
    WriteFile("format.dat", "t : int\nx : double\n");
    std::string text;
    for (int i = 0; i < kRecords; ++i) {
        const std::string key = std::to_string(3 * i);
        text += "t : " + key + "\n  t : " + key + "\n  x :  1.0000000000000000e+00\n";
    }
    WriteFile("data", text);
    MDB db;
    db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    const long long before = BytesRead();
    if (before < 0) GTEST_SKIP() << "no /proc/self/io";
    constexpr int kSearches = 50;
    unsigned state = 12345;
    for (int i = 0; i < kSearches; ++i) {
        state = state * 1664525u + 1013904223u;
        const int n = static_cast<int>(state % kRecords);
        db.GotoRecord(3 * n + 1, MDB_STOP_MODE::BEFORE);
        ASSERT_EQ(db["t"].Int(), 3 * n);
    }
    EXPECT_LT((BytesRead() - before) / kSearches, 100000) << "of " << text.size() << " bytes";
}

TEST_F(MdbTest, DefinitionsAreReadLeniently) {
    WriteFile("format.dat", "time : u t c\n\n  x:double\r\n\tn\t:\tint\n");
    WriteFile("data", "");
    MDB db;
    db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    EXPECT_TRUE(db.GetRecordType().SameType(
        TypeOf({{"time", RECORD_ITEM_TYPE::UTC}, {"x", RECORD_ITEM_TYPE::DOUBLE}, {"n", RECORD_ITEM_TYPE::INT}})));
    EXPECT_FALSE(db.Read());
}

TEST_F(MdbTest, BadDefinitionsAreRefused) {
    const std::pair<const char*, const char*> cases[] = {
        {"time : UTC\n", "MDB: unknown type in record type definition"},
        {"time : utc x\n", "MDB: unknown type in record type definition"},
        {"time utc\n", "MDB: unknown type in record type definition"},
        {"time :\n", "MDB: unknown type in record type definition"},
        {": utc\n", "MDB: invalid key name in record type definition"},
        {"a b : utc\n", "MDB: invalid key name in record type definition"},
        {"t : utc\nt : int\n", "MDB: key name appears twice in record type definition"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        WriteFile("format.dat", text);
        MDB db;
        EXPECT_EQ(Thrown([&] { db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE); }), expected);
        EXPECT_FALSE(db.IsOpen());
    }
    WriteFile("format.dat", std::string(5000, 'x'));
    MDB db;
    EXPECT_EQ(Thrown([&] { db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE); }), "MDB: line too long in mdb-file");
    EXPECT_EQ(Thrown([] { RECORD_ITEM("x", static_cast<RECORD_ITEM_TYPE>(5)); }), "unknown record item type");
    EXPECT_EQ(Thrown([] { static_cast<void>(static_cast<double>(RECORD_ITEM())); }), "MDB: RECORD_ITEM: unknown type");
}

TEST_F(MdbTest, AFileCutWithinARecordIsRefusedAndNotExtended) {
    WriteFile("format.dat", "time : utc\norbit : int\nx : double\ny : double\nmet : met\n");
    for (size_t length = 0; length <= kExample.size(); ++length) {
        SCOPED_TRACE(length);
        WriteFile("data", kExample.substr(0, length));
        MDB db;
        db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE);
        bool found = false;
        std::string thrown;
        Logged([&] { thrown = Thrown([&] { found = db.Read(); }); });
        const bool whole = length == kExample.size();
        EXPECT_EQ(found, whole);
        EXPECT_EQ(thrown, whole || length == 0 ? "" : "MDB: invalid data record");
        if (length == 0 || length == kExample.size()) continue;
        MDB_RECORD record = db.GetRecordType();
        record["time"].Set(UNIVERSAL_TIME::FromText("2013-03-05T14:03:07"));
        Logged([&] { thrown = Thrown([&] { db.Write(record); }); });
        EXPECT_EQ(thrown, "MDB: invalid data record") << "nothing is appended to half a record";
        EXPECT_EQ(ReadFile("data"), kExample.substr(0, length));
    }
}

TEST_F(MdbTest, DamagedRecordsNameFileAndPlace) {
    const std::pair<const char*, const char*> cases[] = {
        {"t : 1\n  t : 1\n  x : 1.5\n", ": byte 14: expected item n"},
        {"t : 1\n  t : 2\n  n : 1\n", ": byte 0: the key and the key item differ"},
        {"t : 1\n  t : 1\n  n : 1e400\n", "n: MDB: RECORD_ITEM: can not read value:  1e400"},
        {"t : 1\n  t : 1\n  n : 99999999999\n", "can not read value"},
        {"t : 1\n  t : 1\nn : 1\n", "expected item n"},
        {"t : 2\n  t : 2\n  n : 1\nt : 1\n  t : 1\n  n : 1\n",
         ": byte 22: the records are not in the order of their keys"},
        {"t : 1\n  t : 1\n  n : 1\n  extra : 1\n", ": byte 22: expected a record of key t"},
        {"t : nan\n  t : nan\n  n : 1\n", "can not read value"},
        {"garbage\n", "expected a record of key t"},
        {"t : 1\n  t : 1\n  n : 12", ": byte 14: the file ends within a record"},
    };
    WriteFile("format.dat", "t : int\nn : int\n");
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        WriteFile("data", text);
        MDB db;
        db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY);
        std::string thrown;
        const std::string log = Logged([&] {
            thrown = Thrown([&] {
                while (db.Read()) {
                }
            });
        });
        EXPECT_EQ(thrown, "MDB: invalid data record");
        EXPECT_THAT(log, HasSubstr(root_ + "/data"));
        EXPECT_THAT(log, HasSubstr(expected));
    }
}

TEST_F(MdbTest, AWriteThatFailsOnAFullDiskLeavesTheFileAsItWas) {
    if (mount("none", root_.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "no memory file system can be mounted";
    MDB db;
    db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE);
    MDB_RECORD record = TypeOf({{"t", RECORD_ITEM_TYPE::DOUBLE}});
    db.SetRecordType(record);
    std::string thrown;
    std::string before;
    const std::string log = Logged([&] {
        for (int i = 0; i < 10000 && thrown.empty(); ++i) {
            before = ReadFile("data");
            record["t"].Set(static_cast<double>(i));
            thrown = Thrown([&] { db.Write(record); });
        }
    });
    EXPECT_EQ(thrown, "can not write MDB_RECORD into mdb-file");
    EXPECT_THAT(log, HasSubstr("can not write MDB_RECORD into mdb-file: " + root_ + "/data: No space left on device"));
    EXPECT_EQ(ReadFile("data"), before);
    db.Close();
    umount(root_.c_str());
}

TEST_F(MdbTest, EachOperationTellsWhyItCanNotBe) {
    MDB db;
    EXPECT_EQ(Thrown([&] { db.Open("", "data", MDB_OPEN_MODE::READ_ONLY); }), "MDB::Open(): no path selected");
    EXPECT_EQ(Thrown([&] { db.Open(root_, "", MDB_OPEN_MODE::READ_ONLY); }), "MDB::Open(): no file selected");
    EXPECT_EQ(Thrown([&] { db.GetPathInfo(); }), "MDB::GetPathInfo(): no path was set before");
    EXPECT_EQ(Thrown([&] { db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY); }), "can not open mdb-file");
    EXPECT_EQ(Thrown([&] { db.Open(root_ + "/none", "data", MDB_OPEN_MODE::READ_ONLY); }),
              "MDB is opened read only: can not create directory");
    WriteFile("plain", "");
    EXPECT_EQ(Thrown([&] { db.Open(root_ + "/plain/below", "data", MDB_OPEN_MODE::READ_WRITE); }),
              "MDB: can not create directory");
    fs::create_directory(root_ + "/directory");
    EXPECT_EQ(Thrown([&] { db.Open(root_, "directory", MDB_OPEN_MODE::READ_ONLY); }), "can not open mdb-file");
    ASSERT_EQ(mkfifo((root_ + "/pipe").c_str(), 0600), 0);
    EXPECT_EQ(Thrown([&] { db.Open(root_, "pipe", MDB_OPEN_MODE::READ_ONLY); }), "can not open mdb-file");

    const MDB_RECORD type = TypeOf({{"t", RECORD_ITEM_TYPE::DOUBLE}});
    EXPECT_EQ(Thrown([&] { db.Read(); }), "MDB::Read(): no file open");
    EXPECT_EQ(Thrown([&] { db.Rewind(); }), "MDB::Rewind(): no file open");
    EXPECT_EQ(Thrown([&] { db.Write(type); }), "MDB::Write(): no file open");
    EXPECT_EQ(Thrown([&] { db.GotoRecord(1.0, MDB_STOP_MODE::EXACT); }), "MDB::GotoRecord(): no file open");
    EXPECT_EQ(Thrown([&] { db["t"]; }), "MDB[\"key\"](): no file open");

    db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE);
    EXPECT_EQ(Thrown([&] { db.Read(); }), "MDB::Read(): no valid record type");
    EXPECT_EQ(Thrown([&] { db.Write(type); }), "MDB::Write(): no valid record type");
    EXPECT_EQ(Thrown([&] { db.GotoRecord(1.0, MDB_STOP_MODE::EXACT); }), "MDB::GotoRecord(): no valid record type");
    EXPECT_EQ(Thrown([&] { db["t"]; }), "MDB[\"key\"](): no valid record type");

    db.SetRecordType(type);
    EXPECT_EQ(Thrown([&] { db["t"]; }), "MDB[\"key\"](): no valid data available");
    EXPECT_EQ(Thrown([&] { db.GotoRecord(1.0, MDB_STOP_MODE::NEAREST); }),
              "MDB::GotoRecord(): mdb-file holds no records");
    db.Write(type);
    ASSERT_TRUE(db.Read());
    EXPECT_EQ(Thrown([&] { db["T"]; }), "MDB: RECORD_ITEM: can not find key_name in record");
    MDB_RECORD earlier = type;
    earlier["t"].Set(-1.0);
    EXPECT_EQ(Thrown([&] { db.Write(earlier); }), "MDB::Write(): key lies before the last record");
    EXPECT_EQ(Thrown([&] {
                  db.Write(TypeOf({{"u", RECORD_ITEM_TYPE::DOUBLE}}));
              }),
              "MDB::Write(): record has not the record type");
    EXPECT_EQ(Thrown([&] {
                  db.SetRecordType(TypeOf({{"u", RECORD_ITEM_TYPE::DOUBLE}}));
              }),
              "MDB: database has another record type");

    db.Open(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    EXPECT_EQ(Thrown([&] { db.Write(type); }), "MDB is opened read only: can not write data record");
    EXPECT_EQ(db.StateAtOpen(), db.StateNow());
    WriteFile("data", "changed");
    EXPECT_NE(db.StateAtOpen(), db.StateNow());
}

}  // namespace
