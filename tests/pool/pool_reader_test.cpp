// Reading: the file's syntax, every failure with its text, and pools that change under the reader.

#include <gmock/gmock.h>

#include <ctime>
#include <filesystem>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "tests/pool/pool_files.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

template <class T>
void Read(PARAMETER_POOL& pool) {
    (void)pool.Get<T>("k");
}

/// What reading the key "k" of this content as a T says; the message without its common beginning.
template <class T>
std::string Failure(const std::string& content) {
    const POOL_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(content));
    const std::string log = LogOf([&] { Read<T>(pool); });
    const std::size_t key = log.find(">> k");
    return key == std::string::npos
               ? log
               : log.substr(0, log.find('\n')) + log.substr(key + 4, log.find('\n', key) - key - 4);
}

constexpr char kInvalid[] = "pool error - no or invalid parameter value in file";
constexpr char kBounds[] = "pool error - parameter value out of bounds";

TEST(PoolReader, ScalarFailuresKeepTheirTexts) {
    struct CASE {
        std::string (*failure)(const std::string&);
        const char* entry;
        const char* error;
        const char* text;
    };
    const auto value_is = [](const CASE& c) {
        const std::string entry = c.entry;
        const std::string token = entry.substr(entry.rfind(' ') + 1);
        return std::string(c.error) + " << read value is : " + token + c.text;
    };
    const CASE cases[] = {
        {Failure<bool>, "BOL true", kInvalid, " but TRUE or FALSE are expected"},
        {Failure<unsigned char>, "BYT 1.5", kInvalid, " BYT (no floating) value expected"},
        {Failure<unsigned char>, "BYT 1e1", kInvalid, " BYT (no floating) value expected"},
        {Failure<unsigned char>, "BYT -1", kInvalid, " BYT (unsigned) value expected"},
        {Failure<unsigned char>, "BYT 256", kBounds, " (value is out of range) BYT expected"},
        {Failure<unsigned char>, "BYT 12x", kInvalid, " BYT (no additional character) value expected"},
        {Failure<signed char>, "INT_8 1E1", kInvalid, " BYT (no floating) value expected"},
        {Failure<signed char>, "INT_8 12x", kInvalid, " INT_8 (no additional character) value expected"},
        {Failure<signed char>, "INT_8 128", kBounds, " (value is out of range) INT_8 expected"},
        {Failure<signed char>, "INT_8 -129", kBounds, " (value is out of range) INT_8 expected"},
        {Failure<short>, "INT_16 1.", kInvalid, " INT_8 (no floating) value expected"},
        {Failure<short>, "INT_16 12x", kInvalid, " INT_8 (no additional character) value expected"},
        {Failure<short>, "INT_16 32768", kBounds, " (value is out of range) INT_16 expected"},
        {Failure<int>, "INT_32 .5", kInvalid, " INT_16 (no floating) value expected"},
        {Failure<int>, "INT_32 -", kInvalid, " INT_32 (no additional character) value expected"},
        {Failure<int>, "INT_32 0x10", kInvalid, " INT_32 (no additional character) value expected"},
        {Failure<int>, "INT_32 2147483648", kBounds, " (value is out of range) INT_32 expected"},
        {Failure<long long>, "INT_64 2e3", kInvalid, " INT_32 (no floating) value expected"},
        {Failure<long long>, "INT_64 7,", kInvalid, " INT_64 (no additional character) value expected"},
        {Failure<long long>, "INT_64 9223372036854775808", kBounds, " (value is out of range) INT_64 expected"},
        {Failure<float>, "FLT_6 1e40", kBounds, " (value is out of range) FLT_6 expected"},
        {Failure<float>, "FLT_6 -1e400", kBounds, " (value is out of range) FLT_6 expected"},
        {Failure<float>, "FLT_6 1.5m", kInvalid, " FLT_6 (no additional character) value expected"},
        {Failure<double>, "FLT_15 1e400", kBounds, " (value is out of range) FLT_15 expected"},
        {Failure<double>, "FLT_15 one", kInvalid, " FLT_15 (no additional character) value expected"},
        {Failure<STRING>, "STR plain", kInvalid, " but a string in double quotes is expected"},
        {Failure<STRING>, "STR \"open", kInvalid, " but a string in double quotes is expected"},
        {Failure<STRING>, "STR \"a\"b\"", kInvalid, " but a string in double quotes is expected"},
        {Failure<COMPLEX<float>>, "CPL_6 1 1e39", kBounds, " (value is out of range) FLT_6 expected"},
        {Failure<INDEX<int, double>>, "IDX_FLT_15 1.0", kInvalid, " INT_16 (no floating) value expected"},
        {Failure<TUPLE<long long>>, "INT_64_INT_64 5 6z", kInvalid, " INT_64 (no additional character) value expected"},
    };
    for (const CASE& c : cases) EXPECT_EQ(c.failure(std::string("k ") + c.entry + "\n"), value_is(c)) << c.entry;
    EXPECT_EQ(Failure<TUPLE<STRING>>("k STR_STR \"a\" b\n"),
              std::string(kInvalid) + " << no correct string tuple format (missing >>\"<< ?)");
    EXPECT_EQ(Failure<TUPLE<int>>("k INT_32_INT_32 1\n"), std::string(kInvalid) + " << no parameter value in file");
    EXPECT_EQ(Failure<int>("k INT_32 \r\n"), std::string(kInvalid) + " << no parameter value in file");
    EXPECT_EQ(Failure<STRING>(std::string("k STR \"a\0b\"\n", 12)),
              std::string(kInvalid) + " error in STRING processing");
}

TEST(PoolReader, TypeFailuresNameTheExpectedTag) {
    for (const char* entry :
         {"k INT_16 5\n", "k int_32 5\n", "k INT_32_V 5\n", "k UNKNOWN 5\n", "k\n", "k \"INT_32\" 5\n"}) {
        EXPECT_EQ(Failure<int>(entry), "pool error - wrong parameter type << type INT_32 expected") << entry;
    }
    EXPECT_EQ(Failure<ARRAY<float>>("k FLT_15_V 0 1\n{\n1\n}\n"),
              "pool error - wrong parameter type << type FLT_6_V expected");
}

TEST(PoolReader, BlockFailuresKeepTheirTexts) {
    struct CASE {
        std::string (*failure)(const std::string&);
        const char* content;
        const char* text;
    };
    constexpr auto kBools = Failure<ARRAY<bool>>;
    constexpr auto kReals = Failure<ARRAY<double>>;
    constexpr auto kSingles = Failure<ARRAY<float>>;
    constexpr auto kPairs = Failure<ARRAY<TUPLE<STRING>>>;
    constexpr auto kIndexed = Failure<ARRAY<INDEX<int, int>>>;
    constexpr auto kBytes = Failure<MATRIX<unsigned char>>;
    const CASE cases[] = {
        {kBools, "k BOL_V 0\n", " << no correct range for VECTOR or MATRIX"},
        {kBools, "k BOL_V 0 -1\n{\n}\n", " << no correct range for VECTOR or MATRIX"},
        {kBools, "k BOL_V 0 2000000000\n{\nTRUE\n}\n", " << no correct range for VECTOR or MATRIX"},
        {kBools, "k BOL_V 2147483647 2\n{\nTRUE\nTRUE\n}\n", " << no correct range for VECTOR or MATRIX"},
        {kBools, "k BOL_V 0 1\n", " << no { due to end of file"},
        {kBools, "k BOL_V 0 1\n\n", " << { expected for BOL_V"},
        {kBools, "k BOL_V 0 1\nTRUE\n", " << { expected instead of TRUE for BOL_V"},
        {kBools, "k BOL_V 4 2\n{\nTRUE\n", " << no value for index 5 due to end of file"},
        {kBools, "k BOL_V 0 1\n{\nyes\n}\n", " << read value is : yes but TRUE or FALSE are expected"},
        {kBools, "k BOL_V 0 1\n{\n\n}\n", " << no parameter value in file"},
        {kBools, "k BOL_V 0 1\n{\nTRUE\n", " << no } due to end of file"},
        {kReals, "k FLT_15_V 0 1\n(\n", " << { expected instead of ( for FLT_8_V"},
        {kReals, "k FLT_15_V 0 1\n{\n1\n2\n}\n", " << } expected instead of 2 for FLT_8_V"},
        {kSingles, "k FLT_6_V 0 1\n{\n1\n\n}\n", " << no } at end of FLT_4_V"},
        {kPairs, "k STR_STR_V 0 2\n{\n\"a\" \"b\"\n}\n", " << STR_STR_V length does not match entry count"},
        {kPairs, "k STR_STR_V 0 1\n{\n\"a\" \"b\"\n\n", " << no } at end of STR_STR_V"},
        {kIndexed, "k IDX_INT_32_V 0 1\n{\n3 4\nx\n", " << } expected instead of x for IDX_INT_32_V"},
        {kBytes, "k BYT_M 2\n", " << no correct range for MATRIX"},
        {kBytes, "k BYT_M -1 2\n", " << no correct range for MATRIX"},
        {kBytes, "k BYT_M 100000 100000\n{\n", " << no correct range for MATRIX"},
        {kBytes, "k BYT_M 1 1\n{\n1\n}\n", " << { expected instead of 1 for BYT_M"},
        {kBytes, "k BYT_M 1 1\n{\n{\n1\n2\n", " << } expected instead of 2 for BYT_M"},
        {kBytes, "k BYT_M 1 1\n{\n{\n1\n}\n", " << no } due to end of file"},
        {kBytes, "k BYT_M 1 2\n{\n{\n1\n}\n}\n", " << read value is : } BYT (no additional character) value expected"},
    };
    for (const CASE& c : cases) EXPECT_EQ(c.failure(c.content), std::string(kInvalid) + c.text) << c.content;
    EXPECT_EQ(kBools("k BOL_V 0 1\n{\nTRUE\nanything\n"), "");  // a vector of booleans never looked at its last line
}

TEST(PoolReader, AFailureNamesPoolLineAndKeyAndLeavesThePoolUsable) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("# c\na INT_32 1\nv INT_32_V 0 2\n{\n1\nx\n}\n");
    PARAMETER_POOL pool(path);
    ARRAY<int> kept(7, 1);
    EXPECT_THAT(LogOf([&] { pool.Get("v", kept); }), HasSubstr("parameter pool file " + path + ", line 6\n"));
    EXPECT_EQ(kept.First(), 7);
    EXPECT_EQ(pool.Get<int>("a"), 1);

    EXPECT_THAT(
        LogOf([&] { (void)pool.Get<int>("none"); }),
        StartsWith(
            "pool error - key not found\nALARM : global : parameter pool: parameter key >> none << not found\n"));
    pool.SetNotFoundLevel(LOGGING_LEVEL::INFO);
    EXPECT_THAT(LogOf([&] { (void)pool.Get<int>("none"); }), HasSubstr("\nINFO  : global : "));
    pool.SetNotFoundLevel(LOGGING_LEVEL::NO_MESSAGE);
    EXPECT_EQ(LogOf([&] { (void)pool.Get<int>("none"); }), "pool error - key not found\n");
    EXPECT_EQ(LogOf([&] { EXPECT_FALSE(pool.FindKey("none")); }), "");
}

TEST(PoolReader, FindsTheFirstEntryInTheFirstColumnOnly) {
    const POOL_FOLDER folder;
    const std::string long_key(101, 'k');
    PARAMETER_POOL pool(
        folder.Make(" indented INT_32 1\n\ttab INT_32 1\n#comment INT_32 1\n\n"
                    "twice INT_32 1\ntwice INT_32 2\n" +
                    long_key +
                    " INT_32 3\nTwice INT_32 4\n"
                    "tabs\tINT_32 \t 5 # rest of the line\nlast INT_32 6"));
    for (const char* key : {"indented", "tab", "#comment", "comment", "", "1", "tWice"})
        EXPECT_FALSE(pool.FindKey(key)) << key;
    EXPECT_FALSE(pool.FindKey(long_key));
    EXPECT_EQ(pool.Get<int>("twice"), 1);
    EXPECT_EQ(pool.Get<int>(std::string(100, 'k')), 3);
    EXPECT_EQ(pool.Get<int>("Twice"), 4);
    EXPECT_EQ(pool.Get<int>("tabs"), 5);
    EXPECT_EQ(pool.Get<int>("last"), 6);
}

TEST(PoolReader, TakesEveryKindOfLineEnd) {
    const std::string unix_text =
        "a INT_32 1\nv STR_V 1 2\n{\n  \"x y\"\n\"\"\n}\nm INT_8_M 2 1\n{\n{\n1\n}\n{\n-1\n}\n}\nb INT_64 2\n";
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        std::string text;
        for (const char c : unix_text) text += c == '\n' ? end : std::string(1, c);
        const POOL_FOLDER folder;
        PARAMETER_POOL pool(folder.Make(text));
        EXPECT_EQ(pool.Get<int>("a"), 1);
        EXPECT_THAT(pool.Get<ARRAY<STRING>>("v"), testing::ElementsAre(STRING("x y"), STRING("")));
        EXPECT_EQ(pool.Get<MATRIX<signed char>>("m")[1][0], -1);
        EXPECT_EQ(pool.Get<std::int64_t>("b"), 2);
    }
}

TEST(PoolReader, CutsLinesAfter1024Characters) {
    const std::string full = "k STR \"" + std::string(1024 - 8, 'x') + "\"";
    EXPECT_EQ(Failure<STRING>(full + "\n"), "");
    EXPECT_THAT(Failure<STRING>("k STR \"" + std::string(1024 - 7, 'x') + "\"\n"), StartsWith(kInvalid));
    const POOL_FOLDER folder;  // the rest of a long comment is a line of its own
    PARAMETER_POOL pool(folder.Make("#" + std::string(1023, '-') + "rest INT_32 5\n"));
    EXPECT_EQ(pool.Get<int>("rest"), 5);
}

TEST(PoolReader, ElementsAreNoEntriesWhateverTheirColumn) {
    const std::string content =
        "v STR_V 0 2\n{\n\"a INT_32 5\"\n\"}\"\n}\n"
        "open INT_32_V 0 9\n{\n12\n13\nnext INT_32 7\n";
    const POOL_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(content));
    for (const char* key : {"{", "}", "12", "\"a"}) EXPECT_FALSE(pool.FindKey(key)) << key;
    EXPECT_EQ(pool.Get<ARRAY<STRING>>("v")[1], STRING("}"));
    EXPECT_EQ(pool.Get<int>("next"), 7);  // a block that is not closed swallows no entry
}

TEST(PoolOpening, FollowsItsOrder) {
    const POOL_FOLDER folder;
    {
        PARAMETER_POOL pool(folder.Path("new.pool"));  // created empty
        EXPECT_FALSE(pool.FindKey("a"));
    }
    EXPECT_EQ(std::filesystem::file_size(folder.Path("new.pool")), 0u);
    EXPECT_THAT(LogOf([&] { PARAMETER_POOL pool(folder.Path("")); }),
                HasSubstr("parameter file " + folder.Path("") + " is a directory!\n"));
    EXPECT_THAT(LogOf([&] { PARAMETER_POOL pool(folder.Make("") + "/below"); }),
                testing::AllOf(StartsWith("pool error - can not open parameter pool\n"),
                               HasSubstr("can not open parameter file ")));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_THROW(PARAMETER_POOL pool(folder.Path("pipe")), CAN_NOT_OPEN_POOL);  // reading would block for ever
    PARAMETER_POOL closed;
    EXPECT_EQ(closed.FileName(), "xxx.dat");
    EXPECT_THAT(LogOf([&] { (void)closed.FindKey("a"); }), HasSubstr("No file pointer given for parameter pool\n"));
}

TEST(PoolIndex, SeesWhatOthersWrite) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\nb INT_32 2\n");
    PARAMETER_POOL reader(path);
    EXPECT_EQ(reader.Get<int>("b"), 2);
    PARAMETER_POOL_READ_WRITE_CHANGE writer(folder.Path(".") + "/test.pool");
    writer.Change("a", 100);
    writer.Change("c", 3);
    writer.Update();
    EXPECT_EQ(reader.Get<int>("a"), 100);
    EXPECT_EQ(reader.Get<int>("b"), 2);
    EXPECT_EQ(reader.Get<int>("c"), 3);
    folder.Make("c INT_32 4\nb INT_32 5\n");  // not by a pool object
    EXPECT_EQ(reader.Get<int>("b"), 5);
    EXPECT_FALSE(reader.FindKey("a"));
}

TEST(PoolIndex, ServesManyLookupsInLittleTime) {
    std::string content;
    for (int i = 0; i < 100'000; ++i) content += "key_" + std::to_string(i) + " INT_32 " + std::to_string(i) + "\n";
    const POOL_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(content));
    const std::clock_t start = std::clock();  // processor time: other programs do not count
    for (int i = 0; i < 200; ++i) EXPECT_EQ(pool.Get<int>("key_" + std::to_string(99'999 - i * 499)), 99'999 - i * 499);
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);  // one pass over the file each would take far longer
}

}  // namespace
