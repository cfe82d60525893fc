#include "lib/baselib/mdb/mdb.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
namespace fs = std::filesystem;

MDB_RECORD TypeOf(const std::vector<std::pair<std::string, RECORD_ITEM_TYPE>>& items) {
    ARRAY<RECORD_ITEM> list(0, static_cast<int>(items.size()));
    for (size_t i = 0; i < items.size(); ++i) list[static_cast<int>(i)] = RECORD_ITEM(items[i].first, items[i].second);
    return MDB_RECORD(list);
}

/// A database that is open.
struct OPENED : MDB {
    OPENED(const std::string& path, const std::string& file, MDB_OPEN_MODE mode) { Open(path, file, mode); }
};

/// A directory of its own for each test, removed afterwards.
class MdbTest : public testing::Test {
  protected:
    void WriteFile(const std::string& name, const std::string& text) { folder_.Make(text, name); }
    std::string ReadFile(const std::string& name) { return Content(folder_.Path(name)); }

    TEMPORARY_FOLDER folder_;
    std::string root_ = folder_.Path(".");
};

const std::string kExample =
    "time : 05-MAR-2012/14:03:07.123456\n"
    "  time : 05-MAR-2012/14:03:07.123456\n"
    "  orbit : -12\n"
    "  x :  7.0000000000000000e+06\n"
    "  y : -1.2500000000000000e-01\n"
    "  met : -0012/03:04:05.006007\n";

TEST_F(MdbTest, WritesTheDocumentedBytesAndReadsThemBack) {
    using enum RECORD_ITEM_TYPE;
    const MDB_RECORD type = TypeOf({{"time", UTC}, {"orbit", INT}, {"x", DOUBLE}, {"y", DOUBLE}, {"met", MET}});
    OPENED db(root_ + "/mission/track", "orbit.mdb", MDB_OPEN_MODE::READ_WRITE);
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

    OPENED reader(root_ + "/mission/track", "orbit.mdb", MDB_OPEN_MODE::READ_ONLY);
    ASSERT_TRUE(reader.Read());
    EXPECT_EQ(reader["time"].Utc(), UNIVERSAL_TIME::FromText("2012-03-05T14:03:07.123456"));
    EXPECT_EQ(static_cast<double>(reader["orbit"]), -12);
    EXPECT_EQ(ValueAs<double>(reader["x"]), 7e6);
    EXPECT_EQ(reader["y"].Double(), -0.125);
    EXPECT_EQ(ValueAs<MISSION_ELAPSED_TIME>(reader["met"]).ToText(), "-0012/03:04:05.006007");
    EXPECT_EQ(TextThrownBy([&] { ValueAs<double>(reader["time"]); }), "can not cast from UTC to double");
    EXPECT_FALSE(reader.Read());
    EXPECT_EQ(reader["orbit"].Int(), -12) << "the end of the file leaves the current record";
    reader.Rewind();
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

TEST(RecordItem, MeasuresDistancesWithinOneType) {
    using enum RECORD_ITEM_TYPE;
    const std::tuple<RECORD_ITEM_TYPE, const char*, const char*, long double> cases[] = {
        {INT, "-2147483648", "2147483647", 4294967295.0L},
        {DOUBLE, "0.5", "-0.25", 0.75L},
        {DOUBLE, "inf", "inf", 0.0L},
        {MET, "-0001/00:00:00", "+0001/00:00:00.5", 172800.5L},
        {UTC, "01-JAN-2017/00:00:00", "31-DEC-2016/23:59:59", 2.0L},
    };
    for (const auto& [type, one, other, distance] : cases) {
        RECORD_ITEM a("k", type), b("k", type);
        a.SetFromText(one);
        b.SetFromText(other);
        EXPECT_EQ(Distance(a, b), distance) << one;
        EXPECT_EQ(Distance(b, a), distance) << one;
    }
    RECORD_ITEM none;
    const char* const unknown = "MDB: RECORD_ITEM: unknown type";
    const std::function<void()> operations[] = {[&] { none.Set(1); },
                                                [&] { none.Set(1.0); },
                                                [&] { none.Set(UNIVERSAL_TIME()); },
                                                [&] { none.Set(MISSION_ELAPSED_TIME()); },
                                                [&] { (void)none.ValueText(); },
                                                [&] { none.SetFromText("1"); },
                                                [&] { (void)static_cast<double>(none); },
                                                [&] { (void)none.Met(); },
                                                [&] { (void)Distance(none, none); }};
    for (const auto& operation : operations) EXPECT_EQ(TextThrownBy(operation), unknown);
}

TEST_F(MdbTest, StopModesFindTheirRecords) {
    WriteFile("format.dat", "t : double\nn : int\n");
    std::string data;
    int count = 0;
    for (const std::string key : {"-5", "10", "20", "20", "20", "31", "1e5"})
        data += "t : " + key + "\n  t : " + key + "\n  n : " + std::to_string(count++) + "\n";
    WriteFile("data", data);
    using enum MDB_STOP_MODE;
    const char* const kBefore =
        "MDB::GotoRecord( mdb_stop_before ) : you want me to give you the record before the first one\n";
    const char* const kAfter =
        "MDB::GotoRecord( mdb_stop_after ) : you want me to give you the record after the last one\n";
    const char* const kExact = "MDB::GotoRecord( mdb_stop_exact ) : search_value not found\n";
    const char* const kBegin =
        "the value you searched for can be far away .. \nINFO  : global : we are at the beginning of the data file \n"
        "INFO  : global : therefore I give you the first record \n";
    const char* const kEnd =
        "the value you searched for can be far away .. \nINFO  : global : we reached the end of the data file \n"
        "INFO  : global : therefore I give you the last record \n";
    const char* const kNearest = "(its really the nearest!)\n";
    // Mode, value, record (-1: fails) and log.
    const std::tuple<MDB_STOP_MODE, double, int, const char*> cases[] = {
        {BEFORE, -5.5, -1, kBefore}, {BEFORE, 9.9, 0, ""},       {BEFORE, 20, 4, ""},
        {BEFORE, 1e9, 6, ""},        {EXACT, 20, 2, ""},         {EXACT, 1e5, 6, ""},
        {EXACT, 25, -1, kExact},     {EXACT, -6, -1, kExact},    {EXACT, 1e6, -1, kExact},
        {AFTER, -6, 0, ""},          {AFTER, 11, 2, ""},         {AFTER, 1e5, 6, ""},
        {AFTER, 100001, -1, kAfter}, {NEAREST, -5, 0, kNearest}, {NEAREST, 15.1, 2, kNearest},
        {NEAREST, 15, 1, kNearest},  {NEAREST, 25, 4, kNearest}, {NEAREST, -6, 0, kBegin},
        {NEAREST, 2e5, 6, kEnd},
    };
    OPENED db(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    for (const auto& [mode, value, record, text] : cases) {
        SCOPED_TRACE(testing::Message() << StopModeText(mode) << " " << value);
        std::string thrown;
        const std::string log = LoggedBy([&] { thrown = TextThrownBy([&] { db.GotoRecord(value, mode); }); });
        EXPECT_EQ(log.empty(), *text == '\0') << log;
        EXPECT_THAT(log, HasSubstr(text));
        EXPECT_EQ(thrown == "nothing thrown" ? db["n"].Int() : -1, record);
    }
    EXPECT_EQ(TextThrownBy([&] { db.GotoRecord(25.0, EXACT); }), "search_value not found");
    EXPECT_EQ(TextThrownBy([&] { db.GotoRecord(25.0, INVALID); }), "MDB::GotoRecord(): invalid stop mode");
    EXPECT_EQ(TextThrownBy([&] { db.GotoRecord(25, EXACT); }), "MDB: RECORD_ITEM: value has not the type of the item");
    EXPECT_NE(TextThrownBy([&] { db.GotoRecord(std::nan(""), NEAREST); }), "nothing thrown");

    db.GotoRecord(20.0, EXACT);
    ASSERT_TRUE(db.Read());
    EXPECT_EQ(db["n"].Int(), 3) << "reading goes on behind the record found";
}

TEST_F(MdbTest, CalendarKeysAreFoundByTheirOwnOrder) {
    WriteFile("format.dat", "time : utc\n");
    std::string text;
    for (const std::string time : {"31-DEC-2011/23:59:59.999999", "01-JAN-2012/00:00:00.000000"})
        text += "time : " + time + "\n  time : " + time + "\n";
    WriteFile("data", text);
    OPENED db(root_, "data", MDB_OPEN_MODE::READ_ONLY);
    db.GotoRecord(UNIVERSAL_TIME::FromText("2012-01-01T00:00:00.000001"), MDB_STOP_MODE::NEAREST);
    EXPECT_EQ(db["time"].ValueText(), "01-JAN-2012/00:00:00.000000");
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
    OPENED db(root_, "data", MDB_OPEN_MODE::READ_ONLY);
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

TEST_F(MdbTest, DefinitionsAreReadLenientlyAndRefusedWhenBad) {
    std::string many;
    for (int i = 0; i < MDB_RECORD::kMaxItemCount + 5; ++i) many += "i" + std::to_string(i) + " : int\n";
    const std::tuple<std::string, const char*, std::string> cases[] = {
        {"time : UTC\n", "MDB: unknown type in record type definition", "time : UTC"},
        {"time utc\n", "MDB: unknown type in record type definition", "time utc"},
        {": utc\n", "MDB: invalid key name in record type definition", ""},
        {"a b : utc\n", "MDB: invalid key name in record type definition", ""},
        {std::string(5000, 'x'), "MDB: line too long in mdb-file", std::string(80, 'x')},
        {std::string(4097, ' '), "MDB: line too long in mdb-file", std::string(80, ' ')},
        {"t : utc\nt : int\n", "MDB: key name appears twice in record type definition", ""},
        {many, "MDB: too many items in record type definition", "i1001 : int"},
    };
    for (const auto& [text, expected, last] : cases) {
        SCOPED_TRACE(text.substr(0, 80));
        WriteFile("format.dat", text);
        MDB db;
        EXPECT_THAT(ErrorAndLogOf([&] { db.Open(root_, "data", MDB_OPEN_MODE::READ_WRITE); }),
                    AllOf(StartsWith(expected + std::string("\n")),
                          HasSubstr(expected + (": " + root_ + "/format.dat: last line read: " + last + "\n"))));
        EXPECT_FALSE(db.IsOpen());
    }
    WriteFile("format.dat", "time : u t c\n\n" + std::string(4096, ' ') + "\n  x:double\r\n\tn\t:\tint\n");
    OPENED db(root_, "data", MDB_OPEN_MODE::READ_WRITE);
    EXPECT_TRUE(db.GetRecordType().SameType(
        TypeOf({{"time", RECORD_ITEM_TYPE::UTC}, {"x", RECORD_ITEM_TYPE::DOUBLE}, {"n", RECORD_ITEM_TYPE::INT}})));
}

TEST_F(MdbTest, AFileCutWithinARecordIsRefusedAndNotExtended) {
    WriteFile("format.dat", "time : utc\norbit : int\nx : double\ny : double\nmet : met\n");
    for (size_t length = 1; length < kExample.size(); ++length) {
        SCOPED_TRACE(length);
        WriteFile("data", kExample.substr(0, length));
        OPENED db(root_, "data", MDB_OPEN_MODE::READ_WRITE);
        EXPECT_THAT(ErrorAndLogOf([&] { db.Read(); }), StartsWith("MDB: invalid data record\n"));
        MDB_RECORD record = db.GetRecordType();
        record["time"].Set(UNIVERSAL_TIME::FromText("2013-03-05T14:03:07"));
        EXPECT_THAT(ErrorAndLogOf([&] { db.Write(record); }), StartsWith("MDB: invalid data record\n"))
            << "nothing is appended to half a record";
        EXPECT_EQ(ReadFile("data"), kExample.substr(0, length));
    }
}

TEST_F(MdbTest, DamagedRecordsNameFileAndPlace) {
    const std::pair<std::string, std::string> cases[] = {
        {"t : 1\n  t : 1\n  x : 1.5\n", ": byte 14: expected item n"},
        {"t : 1\n  t : 1\nn : 1\n", ": byte 14: expected item n"},
        {"t : 1\n  t : 1\n  n 1\n", ": byte 14: expected item n"},
        {"  t : 1\n  t : 1\n  n : 1\n", ": byte 0: expected a record of key t"},
        {"t : 1\n  t : 1\n  n : 2147483648\n", "n: MDB: RECORD_ITEM: can not read value:  2147483648"},
        {"t : 1\n  t : 1\n  n : -2147483649\n", "can not read value"},
        {"t : 1\n  t : 1\n  n : " + std::string(90, '9') + "\n", "value:  " + std::string(79, '9') + "\n"},
        {"t : 1\n  t : 2\n  n : 1\n", ": byte 0: the key and the key item differ"},
        {"t : 1\n  t : 1\n  n : 1e400\n", "n: MDB: RECORD_ITEM: can not read value:  1e400"},
        {"t : 2\n  t : 2\n  n : 1\nt : 1\n  t : 1\n  n : 1\n",
         ": byte 22: the records are not in the order of their keys"},
        {"t : nan\n  t : nan\n  n : 1\n", "can not read value"},
        {"t : 1\n  t : 1\n  n :  \n", "n: MDB: RECORD_ITEM: can not read value"},
        {"t : 1\n  t : 1\n  n : 12", ": byte 14: the file ends within a record"},
    };
    WriteFile("format.dat", "t : int\nn : int\n");
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        WriteFile("data", text);
        OPENED db(root_, "data", MDB_OPEN_MODE::READ_ONLY);
        const auto read_all = [&] {
            while (db.Read()) continue;
        };
        EXPECT_THAT(ErrorAndLogOf(read_all),
                    AllOf(StartsWith("MDB: invalid data record\n"), HasSubstr(root_ + "/data"), HasSubstr(expected)));
    }
}

TEST_F(MdbTest, AWriteThatFailsOnAFullDiskLeavesTheFileAsItWas) {
    if (!MountSmallDisk(root_, "size=64k")) GTEST_SKIP() << "no memory file system can be mounted";
    OPENED db(root_, "data", MDB_OPEN_MODE::READ_WRITE);
    MDB_RECORD record = TypeOf({{"t", RECORD_ITEM_TYPE::DOUBLE}});
    db.SetRecordType(record);
    std::string thrown = "nothing thrown";
    std::string before;
    const std::string log = LoggedBy([&] {
        for (int i = 0; i < 10000 && thrown == "nothing thrown"; ++i) {
            before = ReadFile("data");
            record["t"].Set(static_cast<double>(i));
            thrown = TextThrownBy([&] { db.Write(record); });
        }
    });
    EXPECT_EQ(thrown, "can not write MDB_RECORD into mdb-file");
    EXPECT_THAT(log, HasSubstr("can not write MDB_RECORD into mdb-file: " + root_ + "/data: No space left on device"));
    EXPECT_EQ(ReadFile("data"), before);
    db.Close();
    umount(root_.c_str());
}

TEST_F(MdbTest, WritesNoRecordThatItCouldNotRead) {
    using enum RECORD_ITEM_TYPE;
    struct CASE {
        const char* what;
        double real;
        UNIVERSAL_TIME utc;
        MISSION_ELAPSED_TIME met;
        bool written = false;
    };
    const UNIVERSAL_TIME utc = {2012, 3, 5, 1, 2, 3, 4, 5};
    const MISSION_ELAPSED_TIME met = MISSION_ELAPSED_TIME::FromText("+0001/02:03:04");
    const CASE cases[] = {
        {"not a number", std::nan(""), utc, met},
        {"minute 60", 1, {2012, 3, 5, 1, 60, 3, 4, 5}, met},
        {"month 13", 1, {2012, 13, 5, 1, 2, 3, 4, 5}, met},
        {"year -5", 1, {-5, 3, 5, 1, 2, 3, 4, 5}, met},
        {"31 June", 1, {2012, 6, 31, 23, 59, 60, 0, 0}, met},
        {"a thousand milliseconds", 1, {2012, 3, 5, 1, 2, 3, 1000, 5}, met},
        {"10 000 days", 1, utc, {1, 10000, 0, 0, 0, 0, 0}},
        {"-1 hour", 1, utc, {1, 0, -1, 0, 0, 0, 0}},
        {"infinite", -std::numeric_limits<double>::infinity(), utc, met, true},
        {"ordinary", 1, utc, met, true},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string name = std::string("data ") + c.what;
        OPENED db(root_, name, MDB_OPEN_MODE::READ_WRITE);
        MDB_RECORD record = TypeOf({{"n", INT}, {"x", DOUBLE}, {"utc", UTC}, {"met", MET}});
        db.SetRecordType(record);
        record["x"].Set(c.real);
        record["utc"].Set(c.utc);
        record["met"].Set(c.met);
        const std::string said = ErrorAndLogOf([&] { db.Write(record); });
        EXPECT_EQ(said.empty(), c.written) << said;
        EXPECT_THAT(said, MatchesRegex("(MDB::Write\\(\\): value can not be read again\n.+)?"));
        EXPECT_EQ(ReadFile(name).empty(), !c.written);
        EXPECT_EQ(db.Read(), c.written);
    }
}

TEST_F(MdbTest, RecordsLongerThanAPageAreFoundAndFollowed) {
    std::vector<std::pair<std::string, RECORD_ITEM_TYPE>> items = {{"t", RECORD_ITEM_TYPE::INT}};
    for (int i = 0; i < 900; ++i) items.emplace_back("item_" + std::to_string(i), RECORD_ITEM_TYPE::INT);
    OPENED db(root_, "data", MDB_OPEN_MODE::READ_WRITE);
    MDB_RECORD record = TypeOf(items);
    db.SetRecordType(record);
    for (const int t : {1, 5, 5, 9}) {
        record["t"].Set(t);
        record["item_899"].Set(-t);
        db.Write(record);
    }
    record["t"].Set(8);
    EXPECT_EQ(TextThrownBy([&] { db.Write(record); }), "MDB::Write(): key lies before the last record");
    for (const int t : {1, 5, 9}) {
        db.GotoRecord(t, MDB_STOP_MODE::EXACT);
        EXPECT_EQ(db["item_899"].Int(), -t);
    }
    EXPECT_FALSE(db.Read());
}

TEST_F(MdbTest, EachOperationTellsWhyItCanNotBe) {
    MDB db;
    const auto expect = [&](const char* text, const auto& call) { EXPECT_EQ(TextThrownBy(call), text); };
    const auto expect_open = [&](const char* text, const std::string& path, const char* file, MDB_OPEN_MODE mode) {
        EXPECT_EQ(TextThrownBy([&] { db.Open(path, file, mode); }), text) << path << " " << file;
    };
    using enum MDB_OPEN_MODE;
    WriteFile("plain", "");
    ASSERT_EQ(mkfifo((root_ + "/pipe").c_str(), 0600), 0);
    expect_open("MDB::Open(): no path selected", "", "data", READ_ONLY);
    expect_open("MDB::Open(): no file selected", root_, "", READ_ONLY);
    expect_open("can not open mdb-file", root_, "data", READ_ONLY);
    expect_open("can not open mdb-file", root_, "pipe", READ_ONLY);
    expect_open("MDB is opened read only: can not create directory", root_ + "/none", "data", READ_ONLY);
    expect_open("MDB: can not create directory", root_ + "/plain/below", "data", READ_WRITE);

    const MDB_RECORD type = TypeOf({{"t", RECORD_ITEM_TYPE::DOUBLE}});
    const MDB_RECORD other = TypeOf({{"u", RECORD_ITEM_TYPE::DOUBLE}});
    expect("MDB::Write(): no file open", [&] { db.Write(type); });
    expect("MDB::Read(): no file open", [&] { db.Read(); });
    expect("MDB::Rewind(): no file open", [&] { db.Rewind(); });
    expect("MDB::GotoRecord(): no file open", [&] { db.GotoRecord(1.0, MDB_STOP_MODE::EXACT); });
    expect("MDB::SetRecordType(): no file open", [&] { db.SetRecordType(type); });
    expect("MDB[\"key\"](): no file open", [&] { db["t"]; });
    expect("MDB::GetPathInfo(): no path was set before", [] { MDB().GetPathInfo(); });
    expect("unknown record item type", [] { RecordItemTypeText(static_cast<RECORD_ITEM_TYPE>(5)); });
    db.Open(root_, "data", READ_WRITE);
    EXPECT_EQ(db.GetPathInfo(), root_);
    expect("MDB::Read(): no valid record type", [&] { db.Read(); });
    expect("MDB::Write(): no valid record type", [&] { db.Write(type); });
    expect("MDB::GetRecordType(): record type is not set", [&] { db.GetRecordType(); });
    expect("MDB[\"key\"](): no valid record type", [&] { db["t"]; });
    expect("MDB::GotoRecord(): no valid record type", [&] { db.GotoRecord(1.0, MDB_STOP_MODE::EXACT); });
    for (int i = 0; i < 2; ++i) db.SetRecordType(type);  // its own type again harms nothing
    expect("MDB[\"key\"](): no valid data available", [&] { db["t"]; });
    expect("MDB::GotoRecord(): mdb-file holds no records", [&] { db.GotoRecord(1.0, MDB_STOP_MODE::NEAREST); });
    db.Write(type);
    ASSERT_TRUE(db.Read());
    expect("MDB: RECORD_ITEM: can not find key_name in record", [&] { db["T"]; });
    db.Rewind();
    expect("MDB::GetCurrentRecord(): no record data available", [&] { db.GetCurrentRecord(); });
    MDB_RECORD no_number = type;
    no_number["t"].Set(std::nan(""));
    expect("MDB::Write(): value can not be read again", [&] { db.Write(no_number); });
    MDB_RECORD earlier = type;
    earlier["t"].Set(-1.0);
    expect("MDB::Write(): key lies before the last record", [&] { db.Write(earlier); });
    expect("MDB::Write(): record has not the record type", [&] { db.Write(other); });
    expect("MDB: database has another record type", [&] { db.SetRecordType(other); });
    db.Open(root_, "data", READ_ONLY);
    expect("MDB is opened read only: can not write data record", [&] { db.Write(type); });
    expect("MDB: RECORD_ITEM: unknown type", [] { (void)CompareValues(RECORD_ITEM(), RECORD_ITEM()); });
}

TEST(StopMode, HasATextThatLeadsBackToIt) {
    const std::string texts[] = {"invalid", "stop_before", "stop_exact", "stop_nearest", "stop_after"};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(StopModeText(static_cast<MDB_STOP_MODE>(i)), texts[i]);
        EXPECT_EQ(StopModeFromText(texts[i]), static_cast<MDB_STOP_MODE>(i));
    }
    EXPECT_EQ(StopModeFromText("exact"), MDB_STOP_MODE::INVALID);
    for (const int beyond : {-1, 5}) EXPECT_STREQ(StopModeText(static_cast<MDB_STOP_MODE>(beyond)), "invalid");
}

}  // namespace
