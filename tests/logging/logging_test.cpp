#include "lib/baselib/logging/logging.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

std::string Content(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A log of its own for each test, in a folder of its own.
class LoggingTest : public testing::Test {
  protected:
    LoggingTest() {
        char name[] = "/tmp/logging_test.XXXXXX";
        folder_ = mkdtemp(name);
        temporary_ = LOGGING::Request().LogFileName();
    }
    ~LoggingTest() override {
        LOGGING::Release();
        if (!temporary_.empty()) unlink(temporary_.c_str());
        std::filesystem::remove_all(folder_);
    }

    /// What the action writes to the screen.
    template <class ACTION>
    static std::string Screen(ACTION action) {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    }

    /// Names a final log file and gives its path.
    std::string UseFile(const std::string& name = "log.test") {
        const std::string path = folder_ + "/" + name;
        Log().SetLogFile(path);
        return path;
    }

    std::string folder_;
    std::string temporary_;  ///< the log file of the creation
};

TEST_F(LoggingTest, EachLevelHasItsTagAndItsEmphasisOnTheScreenOnly) {
    struct CASE {
        LOGGING_LEVEL level;
        const char *screen, *file;
    };
    const CASE cases[] = {
        {static_cast<LOGGING_LEVEL>(0), "", ""},  // below both thresholds
        {LOGGING_LEVEL::TRACE, "", ""},
        {LOGGING_LEVEL::DEBUG, "DEBUG : global : 7\n", "DEBUG : global : 7\n"},
        {LOGGING_LEVEL::PARAMETER, "PARAM : global : 7\n", "PARAM : global : 7\n"},
        {LOGGING_LEVEL::INFO, "INFO  : global : 7\n", "INFO  : global : 7\n"},
        {LOGGING_LEVEL::QA_WARNING, "QA_WA : global : 7\n", "QA_WA : global : 7\n"},
        {LOGGING_LEVEL::WARNING, "\033[4mWARN  : global : 7\n\033[0m", "WARN  : global : 7\n"},
        {LOGGING_LEVEL::EXCEPTION, "\033[1mEXCEP : global : 7\n\033[0m", "EXCEP : global : 7\n"},
        {LOGGING_LEVEL::ALARM, "\033[7mALARM : global : 7\n\033[0m", "ALARM : global : 7\n"},
    };
    const std::string path = UseFile();
    std::string file;
    for (const CASE& c : cases) {
        EXPECT_EQ(Screen([&c] { Log().Message(c.level, "%d", 7); }), c.screen);
        file += c.file;
        EXPECT_EQ(Content(path), file);
    }
    Log().SetScreenThreshold(0);
    EXPECT_EQ(Screen([] { Log().Message(static_cast<LOGGING_LEVEL>(0), "x"); }), "LEV_? : global : x\n");
}

TEST_F(LoggingTest, ThresholdsFilterScreenAndFileApart) {
    const std::string path = UseFile();
    Log().SetScreenThreshold(10);
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::WARNING));
    const std::string screen = Screen([] {
        Log().Message(LOGGING_LEVEL::ALARM, "loud");
        Log().Message(LOGGING_LEVEL::INFO, "quiet");
        Log() << LOGGING_LEVEL::WARNING << "streamed " << 1 << "\n";
        Log() << LOGGING_LEVEL::DEBUG << "not streamed " << 2 << "\n";
    });
    EXPECT_EQ(screen, "");
    EXPECT_EQ(Content(path), "ALARM : global : loud\nWARN  : global : streamed 1\n");
}

TEST_F(LoggingTest, StreamFormWritesValuesWithoutEmphasis) {
    const std::string path = UseFile();
    char from_outside[] = "c\033d";
    const auto line = [&from_outside] {
        Log() << LOGGING_LEVEL::ALARM << "text\t" << std::string("a\nb") << from_outside << ' ' << -3 << ' '
              << 4'000'000'000U << ' ' << -5'000'000'000L << ' ' << 18'446'744'073'709'551'615ULL << ' ' << 0.25
              << "\n";
    };
    const std::string expected =
        "ALARM : global : text\ta\\x0Abc\\x1Bd -3 4000000000 -5000000000 18446744073709551615 0.25\n";
    EXPECT_EQ(Screen(line), expected);
    EXPECT_EQ(Content(path), expected);
}

TEST_F(LoggingTest, ANullTextStopsTheStreamFormOnTheScreen) {
    const std::string path = UseFile();
    const char* const null_text = nullptr;
    const std::string screen = Screen([null_text] {
        Log() << LOGGING_LEVEL::INFO << "before" << null_text << "after\n";
        Log().Message(LOGGING_LEVEL::INFO, "message");
    });
    EXPECT_EQ(screen, "INFO  : global : beforeINFO  : global : message\n");
    EXPECT_EQ(Content(path), "INFO  : global : beforeafter\nINFO  : global : message\n");
}

TEST_F(LoggingTest, AValueCannotForgeALine) {
    const std::string screen = Screen(
        [] { Log().Message(LOGGING_LEVEL::INFO, "value %s", "x\nALARM : global : ORQ_MSG|ERROR|velmora\033[7m%n"); });
    EXPECT_EQ(screen, "INFO  : global : value x\\x0AALARM : global : ORQ_MSG|ERROR|velmora\\x1B[7m%n\n");
}

TEST_F(LoggingTest, NothingMayBeLoggedAtNoMessage) {
    try {
        Log().Message(LOGGING_LEVEL::NO_MESSAGE, "x");
        FAIL();
    } catch (const char* text) {
        EXPECT_STREQ(
            text,
            "LOGGING::Message: logging not allowed in level NO_MESSAGE. This level is only provided to totally "
            "turn off screen logging.");
    }
    try {
        Log() << LOGGING_LEVEL::NO_MESSAGE;
        FAIL();
    } catch (const char* text) {
        EXPECT_STREQ(
            text,
            "LOGGING::operator << (LOGGING_LEVEL_T): logging not allowed in level NO_MESSAGE. This level is only "
            "provided to totally turn off screen logging.");
    }
}

TEST_F(LoggingTest, TheTemporaryFileMovesIntoTheFinalOneBehindItsOldContent) {
    EXPECT_THAT(temporary_, StartsWith("/tmp/log."));
    struct stat status = {};
    ASSERT_EQ(stat(temporary_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U) << "nobody else writes into it";
    EXPECT_TRUE(Log().HasTemporaryFile());
    const std::string path = folder_ + "/log.x";
    std::ofstream(path) << "yesterday\n";
    Screen([&path] {
        Log().Message(LOGGING_LEVEL::INFO, "early");
        Log().SetLogFile(path);
        Log().SetLogFile(path);  // once more changes nothing
        Log().Message(LOGGING_LEVEL::INFO, "late");
    });
    EXPECT_EQ(Content(path), "yesterday\nINFO  : global : early\nINFO  : global : late\n");
    EXPECT_NE(access(temporary_.c_str(), F_OK), 0);
    EXPECT_EQ(Log().LogFileName(), path);
    EXPECT_FALSE(Log().HasTemporaryFile());
    const std::string next = UseFile("log.y");
    EXPECT_EQ(access(path.c_str(), F_OK), 0) << "a file that somebody chose is never removed";
    EXPECT_EQ(Content(next), "");
}

TEST_F(LoggingTest, ALostTemporaryFileIsTold) {
    unlink(temporary_.c_str());
    EXPECT_EQ(Screen([this] { UseFile(); }), "INFO  : global :  can not reopen tmp logging file: " + temporary_ + "\n");
    EXPECT_EQ(Content(folder_ + "/log.test"),
              "INFO  : global :  can not reopen tmp logging file: " + temporary_ + "\n");
}

TEST_F(LoggingTest, WithoutALogFileTheScreenStays) {
    const std::string path = folder_ + "/no such folder/log";
    const std::string screen = Screen([&path] {
        Log().Message(LOGGING_LEVEL::INFO, "early");
        Log().SetLogFile(path);
        Log().Message(LOGGING_LEVEL::INFO, "late");
    });
    EXPECT_EQ(screen, "INFO  : global : early\nALARM : global :  :   can not open logging file: " + path +
                          "\nINFO  : global : late\n");
    EXPECT_EQ(Content(temporary_), "INFO  : global : early\n");
}

TEST_F(LoggingTest, TheLastReleaseEndsTheLogAndThresholdsStartAfresh) {
    LOGGING& first = LOGGING::Request();
    EXPECT_EQ(&first, &Log());
    LOGGING::Release();
    const std::string path = UseFile();
    Log().SetScreenThreshold(10);
    Log().Message(LOGGING_LEVEL::INFO, "still there");
    LOGGING::Release();
    LOGGING::Request();
    const std::string second_temporary = Log().LogFileName();
    EXPECT_EQ(Screen([] { Log().Message(LOGGING_LEVEL::DEBUG, "new"); }), "DEBUG : global : new\n");
    EXPECT_EQ(Content(path), "INFO  : global : still there\n");
    EXPECT_EQ(Content(second_temporary), "DEBUG : global : new\n");
    temporary_ = second_temporary;
}

TEST_F(LoggingTest, HeaderAndFooterAreLinesLikeAnyOther) {
    const std::string path = UseFile();
    setenv("PROC_NAME", "CHAIN", 1);
    setenv("CHAIN_VERSION", "4.2", 1);
    const VERSION_RECORD version = {"full.text", "date", "1.2", "what it does", "prog", "2026-01-02", "me"};
    Screen([&version] {
        Log().Header(version, "pcf.x");
        Log().Footer();
    });
    unsetenv("PROC_NAME");
    const std::string rule(59, '*');
    char host[257] = "";
    gethostname(host, 256);
    EXPECT_THAT(Content(path), testing::MatchesRegex("INFO  : global : \n"
                                                     "INFO  : global : \\*{59}\n"
                                                     "INFO  : global : prog 1\\.2 - what it does\n"
                                                     "INFO  : global : \n"
                                                     "INFO  : global : \\*{59}\n"
                                                     "INFO  : global : compile date: 2026-01-02  compiled by: me\n"
                                                     "INFO  : global : start time: [A-Z][a-z]{2} .*  hostname: " +
                                                     std::string(host) +
                                                     "\n"
                                                     "INFO  : global : started by: CHAIN4\\.2\n"
                                                     "INFO  : global : using configuration file pcf\\.x\n"
                                                     "DEBUG : global : full version: full\\.text\n"
                                                     "INFO  : global : execution time: .*\n"
                                                     "INFO  : global : end time: .* 20[0-9]{2}\n"
                                                     "INFO  : global : \\*{59}\n"));
}

TEST_F(LoggingTest, PrefixCaptureAndQaFlag) {
    EXPECT_FALSE(Log().QaWarningLogged());
    Log().SetPrefix("job 7");
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::INFO));
    const std::string screen = Screen([] {
        Log().Message(LOGGING_LEVEL::INFO, "before");
        Log().SetCapture(true);
        Log().Message(LOGGING_LEVEL::INFO, "kept %d", 1);
        Log().Message(LOGGING_LEVEL::DEBUG, "not on the screen");
        Log().Message(LOGGING_LEVEL::QA_WARNING, "kept %d", 2);
        Log().SetCapture(false);
        Log().Message(LOGGING_LEVEL::INFO, "after");
    });
    EXPECT_THAT(screen, StartsWith("INFO  : job 7 : before\n"));
    EXPECT_THAT(Log().CapturedLines(), ElementsAre("kept 1", "kept 2"));
    EXPECT_TRUE(Log().QaWarningLogged());
}

TEST_F(LoggingTest, ThreadsLogWholeMessages) {
    const std::string path = UseFile();
    constexpr int kThreads = 8;
    constexpr int kLines = 200;
    Screen([] {
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([i] {
                for (int n = 0; n < kLines; ++n) {
                    Log().Message(LOGGING_LEVEL::INFO, "thread %d line %d end", i, n);
                    if (n % 50 == 0) Log().SetFileThreshold(2);
                    Log() << LOGGING_LEVEL::TRACE << "interleaves, below the threshold " << n << "\n";
                }
            });
        Log().SetPrefix("other");
        for (std::thread& thread : threads) thread.join();
    });
    std::ifstream file(path);
    int count = 0;
    for (std::string line; std::getline(file, line); ++count) EXPECT_THAT(line, EndsWith(" end"));
    EXPECT_EQ(count, kThreads * kLines);
}

TEST_F(LoggingTest, AnEmergencyLineBeginsAfreshAndSilencesTheRest) {
    const std::string path = UseFile();
    EXPECT_EXIT(
        {
            Log() << LOGGING_LEVEL::INFO << "half a li";
            LOGGING::BeginEmergency();
            LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, "emergency");
            Log() << "ne\n";
            Log().Message(LOGGING_LEVEL::ALARM, "too late");
            _exit(3);
        },
        testing::ExitedWithCode(3), "");
    EXPECT_EQ(Content(path), "INFO  : global : half a li\nALARM : global : emergency\n");
}

TEST_F(LoggingTest, AHardStopEndsWithStatusOneFromAnyThread) {
    EXPECT_EXIT(std::thread([] { HardStop(); }).join(), testing::ExitedWithCode(1), "");
}

}  // namespace
