// Reading: the file's syntax, every failure with its text, and pools that change under the reader.

#include <gmock/gmock.h>

#include <filesystem>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;

/// What reading the key "k" of this content as a T says; the message without its common beginning.
template <class T>
std::string Failure(const std::string& content) {
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(content));
    const std::string log = ErrorAndLogOf([&] { (void)pool.Get<T>("k"); });
    if (log.empty()) return "";
    const std::size_t key = log.find(">> k") + 4;
    return log.substr(0, log.find('\n')) + log.substr(key, log.find('\n', key) - key);
}

TEST(PoolReader, FailuresKeepTheirTexts) {
    struct CASE {
        std::string (*failure)(const std::string&);
        std::string content, text;
    };
    const std::string bounds = "pool error - parameter value out of bounds << read value is : ";
    const std::string invalid = "pool error - no or invalid parameter value in file";
    const std::string value = invalid + " << read value is : ";
    const std::string type = "pool error - wrong parameter type << type ";
    const CASE cases[] = {
        {Failure<bool>, "BOL true\n", value + "true but TRUE or FALSE are expected"},
        {Failure<unsigned char>, "BYT 256\n", bounds + "256 (value is out of range) BYT expected"},
        {Failure<signed char>, "INT_8 1E1\n", value + "1E1 BYT (no floating) value expected"},
        {Failure<short>, "INT_16 1.\n", value + "1. INT_8 (no floating) value expected"},
        {Failure<int>, "INT_32 -\n", value + "- INT_32 (no additional character) value expected"},
        {Failure<int>, "INT_32 \r\n", invalid + " << no parameter value in file"},
        {Failure<long long>, "INT_64 2e3\n", value + "2e3 INT_32 (no floating) value expected"},
        {Failure<float>, "FLT_6 1e40\n", bounds + "1e40 (value is out of range) FLT_6 expected"},
        {Failure<double>, "FLT_15 1e400\n", bounds + "1e400 (value is out of range) FLT_15 expected"},
        {Failure<STRING>, "STR \"a\"b\"\n", value + "\"a\"b\" but a string in double quotes is expected"},
        {Failure<TUPLE<int>>, "INT_32_INT_32 5 6z\n", value + "6z INT_32 (no additional character) value expected"},
        {Failure<STRING>, "STR xa\"\n", value + "xa\" but a string in double quotes is expected"},
        {Failure<TUPLE<STRING>>, "STR_STR \"a\" b\n",
         invalid + " << no correct string tuple format (missing >>\"<< ?)"},
        {Failure<int>, "INT_16 5\n", type + "INT_32 expected"},
        {Failure<int>, "INT_32_V 5\n", type + "INT_32 expected"},
        {Failure<ARRAY<float>>, "FLT_15_V 0 1\n{\n1\n}\n", type + "FLT_6_V expected"},
        {Failure<ARRAY<bool>>, "BOL_V 0 2000000000\n{\n", invalid + " << no correct range for VECTOR or MATRIX"},
        {Failure<ARRAY<bool>>, "BOL_V 2147483647 2\n{\n", invalid + " << no correct range for VECTOR or MATRIX"},
        {Failure<ARRAY<bool>>, "BOL_V 4 2\n{\nTRUE\n", invalid + " << no value for index 5 due to end of file"},
        {Failure<ARRAY<bool>>, "BOL_V 0 1\n{\nTRUE\n", invalid + " << no } due to end of file"},
        {Failure<ARRAY<bool>>, "BOL_V 0 1\n{\nTRUE\nanything\n", ""},  // such a vector never looked at its last line
        {Failure<ARRAY<double>>, "FLT_15_V 0 1\n(\n", invalid + " << { expected instead of ( for FLT_8_V"},
        {Failure<ARRAY<float>>, "FLT_6_V 0 1\n{\n1\n\n}\n", invalid + " << no } at end of FLT_4_V"},
        {Failure<ARRAY<TUPLE<STRING>>>, "STR_STR_V 0 2\n{\n\"a\" \"b\"\n}\n",
         invalid + " << STR_STR_V length does not match entry count"},
        {Failure<MATRIX<short>>, "INT_16_M 100000 100000\n{\n", invalid + " << no correct range for MATRIX"},
        // A line of 1024 characters is whole.
        {Failure<STRING>, "STR \"" + std::string(1024 - 8, 'x') + "\"\n", ""},
        {Failure<STRING>, "STR \"" + std::string(1024 - 7, 'x') + "\"\n",
         value + "\"" + std::string(1024 - 7, 'x') + " but a string in double quotes is expected"}};
    for (const CASE& c : cases) EXPECT_EQ(c.failure("k " + c.content), c.text) << c.content;
}

TEST(PoolReader, AFailureNamesPoolLineAndKeyAndLeavesThePoolUsable) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("# c\na INT_32 1\nv INT_32_V 0 2\n{\n1\nx\n}\n");
    PARAMETER_POOL pool(path);
    EXPECT_THAT(ErrorAndLogOf([&] { (void)pool.Get<ARRAY<int>>("v"); }),
                HasSubstr("parameter pool file " + path + ", line 6\n"));
    EXPECT_EQ(pool.Get<int>("a"), 1);
    pool.SetNotFoundLevel(LOGGING_LEVEL::NO_MESSAGE);
    EXPECT_EQ(ErrorAndLogOf([&] { (void)pool.Get<int>("none"); }), "pool error - key not found\n");
}

TEST(PoolReader, FindsTheFirstEntryInTheFirstColumnOnly) {
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(
        " indented INT_32 1\n#comment INT_32 1\n\ntwice INT_32 1\ntwice INT_32 2\n" + std::string(101, 'k') +
        " INT_32 3\ntabs\tINT_32 \t 5 # rest\n#" + std::string(1023, '-') +
        "long INT_32 4\nv STR_V 0 2\n{\n\"a INT_32 5\"\n\"}\"\n}\n" + "open INT_32_V 0 9\n{\n12\n13\nlast INT_32 7"));
    for (const char* key : {"indented", "#comment", "1", "Twice", "}", "12", "\"a"})
        EXPECT_FALSE(pool.FindKey(key)) << key;
    EXPECT_EQ(pool.Get<int>("twice"), 1);
    EXPECT_EQ(pool.Get<int>(std::string(100, 'k')), 3);
    EXPECT_EQ(pool.Get<int>("tabs"), 5);
    EXPECT_EQ(pool.Get<int>("long"), 4);  // the rest of a long comment is a line of its own
    EXPECT_EQ(pool.Get<ARRAY<STRING>>("v")[1], STRING("}"));
    EXPECT_EQ(pool.Get<int>("last"), 7);  // a block that is not closed swallows no entry
}

TEST(PoolReader, TakesEveryKindOfLineEnd) {
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        const TEMPORARY_FOLDER folder;
        PARAMETER_POOL pool(
            folder.Make("v STR_V 1 1" + end + "{" + end + "  \"x y\"" + end + "}" + end + "b BYT 2" + end));
        EXPECT_EQ(pool.Get<ARRAY<STRING>>("v")[1], STRING("x y"));
        EXPECT_EQ(pool.Get<unsigned char>("b"), 2);
    }
}

TEST(PoolOpening, FollowsItsOrder) {
    const TEMPORARY_FOLDER folder;
    EXPECT_FALSE(PARAMETER_POOL(folder.Path("new.pool")).FindKey("a"));  // created empty
    EXPECT_EQ(std::filesystem::file_size(folder.Path("new.pool")), 0u);
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_THROW(PARAMETER_POOL pool(folder.Path("pipe")), CAN_NOT_OPEN_POOL);  // reading would block for ever
    PARAMETER_POOL closed;
    EXPECT_THAT(ErrorAndLogOf([&] { (void)closed.FindKey("a"); }),
                HasSubstr("No file pointer given for parameter pool\n"));
}

TEST(PoolOpening, RefusesARasterEarlyAndTakesOddPools) {
    const std::string zeros(200'000, '\0');
    std::string raster = "\x59\xa6\x6a\x95";
    for (int i = 0; i < 200'000; ++i) raster += static_cast<char>(i * 7919 >> 5);
    for (const std::string& content :
         {raster, zeros, raster.substr(0, 900), "1 2 3\n4 5 6\n" + std::string(70'000, '7')}) {
        const TEMPORARY_FOLDER folder;
        const std::string path = folder.Make(content);
        EXPECT_THAT(ErrorAndLogOf([&] { PARAMETER_POOL pool(path); }),
                    HasSubstr(path + " is no parameter pool: no entry in its first " +
                              std::to_string(std::min(content.size(), std::size_t{65536})) + " bytes\n"));
    }
    for (const std::string& content :
         {std::string(), std::string("one\ntwo\n"), "#\n#\n" + std::string(70'000, '\n') + "k INT_32 1\n",
          std::string("# \0\nk INT_32 1\n", 15)}) {
        const TEMPORARY_FOLDER folder;
        EXPECT_EQ(ErrorAndLogOf([&] { PARAMETER_POOL pool(folder.Make(content)); }).find("ALARM"), std::string::npos);
    }
}

TEST(PoolOpening, RefusesZeroBytesOutsideOfCommentsByTheirLine) {
    const std::string whole = "# c\nk INT_32 1\n";
    const std::pair<std::string, const char*> cases[] = {
        {whole + std::string(1, '\0'), "3"},
        {whole + "s STR \"a" + std::string(1, '\0') + "b\"\n" + whole, "3"},
        {whole + "#" + std::string(1024, '\0') + "\n", "4"}};
    for (const auto& [content, line] : cases) {
        const TEMPORARY_FOLDER folder;
        const std::string path = folder.Make(content);
        EXPECT_THAT(ErrorAndLogOf([&] { PARAMETER_POOL pool(path); }),
                    HasSubstr(path + " is no parameter pool: a zero byte in line " + line + ", as disks"));
        std::filesystem::resize_file(path, 300 << 20);  // more than a pool may have: the rest is not read
        EXPECT_THAT(ErrorAndLogOf([&] { PARAMETER_POOL again(path); }), HasSubstr(": a zero byte in line "));
    }
}

TEST(PoolOpening, WaitsForALockForABoundedTimeAndSaysSo) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    const POOL_FILE file(path);
    const POOL_FILE other(path);
    file.Lock(POOL_FILE::LOCK::SHARED);
    EXPECT_EQ(ErrorAndLogOf([&] { other.Lock(POOL_FILE::LOCK::SHARED, 0); }), "");
    EXPECT_THAT(ErrorAndLogOf([&] { other.Lock(POOL_FILE::LOCK::EXCLUSIVE, 1); }),
                testing::AllOf(HasSubstr("parameter pool error\nINFO  : global : waiting for pool " + path +
                                         ", which another process has locked (at most 1 s)\n"),
                               HasSubstr("can not lock pool " + path + ": another process keeps it locked\n")));
    file.Unlock();
    other.Lock(POOL_FILE::LOCK::EXCLUSIVE, 0);
}

TEST(PoolState, IsThatOfTheOpeningUntilThisProcessUpdates) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\nb INT_32 2\n");
    PARAMETER_POOL reader(path);
    folder.Make("a INT_32 3\nb INT_32 4\n");  // by another program, between two lookups
    EXPECT_EQ(reader.Get<int>("a"), 1);
    PARAMETER_POOL_READ_WRITE_CHANGE writer(folder.Path(".") + "/test.pool");
    writer.Change("a", 100);
    writer.Change("c", 5);
    writer.Update();
    EXPECT_EQ(reader.Get<int>("a"), 100);
    EXPECT_EQ(reader.Get<int>("b"), 4);
    EXPECT_EQ(reader.Get<int>("c"), 5);
}

TEST(PoolState, ServesManyLookupsFromOneReading) {
    std::string content;
    for (int i = 0; i < 100'000; ++i) content += "key_" + std::to_string(i) + " INT_32 " + std::to_string(i) + "\n";
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(content));
    const long long before = BytesRead();
    for (int i = 0; i < 200; ++i) EXPECT_EQ(pool.Get<int>("key_" + std::to_string(99'999 - i * 499)), 99'999 - i * 499);
    EXPECT_LE(BytesRead() - before, 2 * static_cast<long long>(content.size()));
}

}  // namespace
