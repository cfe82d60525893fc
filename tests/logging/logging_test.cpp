#include "lib/baselib/logging/logging.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "lib/baselib/logging/progress_line.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;

/// A log of its own for each test, in a folder of its own.
class LoggingTest : public testing::Test {
  protected:
    LoggingTest() : temporary_(LOGGING::Request().LogFileName()) {}
    ~LoggingTest() override {
        LOGGING::Release();
        if (!temporary_.empty()) unlink(temporary_.c_str());
    }

    /// Names a final log file and gives its path.
    std::string UseFile() {
        const std::string path = folder_.Path("log.test");
        Log().SetLogFile(path);
        return path;
    }

    TEMPORARY_FOLDER folder_;
    std::string temporary_;  ///< the log file of the creation
};

TEST_F(LoggingTest, EachLevelHasItsTagAndItsEmphasisOnTheScreenOnly) {
    const std::tuple<LOGGING_LEVEL, std::string, std::string> cases[] = {
        {LOGGING_LEVEL::TRACE, "", ""},
        {LOGGING_LEVEL::DEBUG, "", "DEBUG : global : 7\n"},
        {LOGGING_LEVEL::PARAMETER, "", "PARAM : global : 7\n"},
        {LOGGING_LEVEL::INFO, "", "INFO  : global : 7\n"},
        {LOGGING_LEVEL::QA_WARNING, "", "QA_WA : global : 7\n"},
        {LOGGING_LEVEL::WARNING, "\033[4m", "WARN  : global : 7\n"},
        {LOGGING_LEVEL::EXCEPTION, "\033[1m", "EXCEP : global : 7\n"},
        {LOGGING_LEVEL::ALARM, "\033[7m", "ALARM : global : 7\n"},
    };
    const std::string path = UseFile();
    std::string all;
    for (const auto& [level, emphasis, file] : cases) {
        const std::string end = emphasis.empty() ? "" : "\033[0m";
        EXPECT_EQ(ScreenOf([&] { Log().Message(level, "%d", 7); }), emphasis + file + end);
        all += file;
    }
    EXPECT_EQ(Content(path), all);
}

TEST_F(LoggingTest, ThresholdsFilterScreenAndFileApart) {
    const std::string path = UseFile();
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::WARNING));
    const std::string screen = ScreenOf([] {
        Log().Message(LOGGING_LEVEL::EXCEPTION, "loud");
        Log() << LOGGING_LEVEL::WARNING << "streamed\n" << LOGGING_LEVEL::INFO << "not streamed\n";
        Log() << LOGGING_LEVEL::ALARM << "both\n";
    });
    EXPECT_EQ(screen, "ALARM : global : both\n");
    EXPECT_FALSE(Log().Takes(LOGGING_LEVEL::QA_WARNING));
    EXPECT_TRUE(Log().Takes(LOGGING_LEVEL::WARNING)) << "the file does";
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::INFO));
    EXPECT_TRUE(Log().Takes(LOGGING_LEVEL::INFO)) << "the screen does";
    EXPECT_EQ(Content(path), "EXCEP : global : loud\nWARN  : global : streamed\nALARM : global : both\n");
}

TEST_F(LoggingTest, StreamFormWritesValuesWithoutEmphasis) {
    const std::string path = UseFile();
    const std::string screen = ScreenOf([] {
        Log() << LOGGING_LEVEL::ALARM << std::string("a\nb") << ' ' << -3 << ' ' << 18'446'744'073'709'551'615ULL
              << "\n";
        Log() << LOGGING_LEVEL::INFO << 4U << -5L << 6UL << -7LL << "\n";
        Log() << LOGGING_LEVEL::INFO << 0.25 << static_cast<const char*>(nullptr) << "a null text ends the screen's\n";
    });
    EXPECT_EQ(screen,
              "ALARM : global : a\\x0Ab -3 18446744073709551615\nINFO  : global : 4-56-7\nINFO  : global : 0.25");
    EXPECT_EQ(Content(path), screen + "a null text ends the screen's\n");
}

TEST_F(LoggingTest, AValueCannotForgeALine) {
    EXPECT_EQ(ScreenOf([] { Log().Message(LOGGING_LEVEL::INFO, "value %s", "x\nALARM : global : \033[7m%n"); }),
              "INFO  : global : value x\\x0AALARM : global : \\x1B[7m%n\n");
}

TEST_F(LoggingTest, NothingMayBeLoggedAtNoMessage) {
    const auto thrown = [](const std::string& from) {
        return testing::Throws<const char*>(testing::StrEq(from +
                                                           ": logging not allowed in level NO_MESSAGE. This level "
                                                           "is only provided to totally turn off screen logging."));
    };
    EXPECT_THAT([] { Log().Message(LOGGING_LEVEL::NO_MESSAGE, "x"); }, thrown("LOGGING::Message"));
    EXPECT_THAT([] { Log() << LOGGING_LEVEL::NO_MESSAGE; }, thrown("LOGGING::operator << (LOGGING_LEVEL_T)"));
}

TEST_F(LoggingTest, TheTemporaryFileMovesIntoTheFinalOneBehindItsOldContent) {
    struct stat status = {};
    ASSERT_EQ(stat(temporary_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U) << "nobody else writes into it";
    const std::string path = folder_.Path("log.x");
    Write(path, "yesterday\n");
    Log().Message(LOGGING_LEVEL::INFO, "early");
    for (int i = 0; i < 2; ++i) Log().SetLogFile(path);
    Log().Message(LOGGING_LEVEL::INFO, "late");
    EXPECT_EQ(Content(path), "yesterday\nINFO  : global : early\nINFO  : global : late\n");
    EXPECT_NE(access(temporary_.c_str(), F_OK), 0);
    UseFile();
    EXPECT_EQ(access(path.c_str(), F_OK), 0) << "a file that somebody chose is never removed";
}

TEST_F(LoggingTest, TellsThatTheTemporaryFileCouldNotBeTakenOver) {
    unlink(temporary_.c_str());
    const std::string path = folder_.Path("log.x");
    EXPECT_EQ(ScreenOf([&] { Log().SetLogFile(path); }),
              "INFO  : global :  can not reopen tmp logging file: " + temporary_ + "\n");
    LOGGING::Release();
    temporary_ = LOGGING::Request().LogFileName();
    unlink(temporary_.c_str());
    ASSERT_EQ(mkdir(temporary_.c_str(), 0700), 0);
    EXPECT_EQ(ScreenOf([&] { Log().SetLogFile(path); }),
              "INFO  : global :  can not copy tmp logging file: " + temporary_ + "\n");
    rmdir(temporary_.c_str());
    EXPECT_FALSE(Log().HasTemporaryFile());
    Log().Message(LOGGING_LEVEL::INFO, "late");
    EXPECT_THAT(Content(path), EndsWith("INFO  : global : late\n"));
}

TEST_F(LoggingTest, WithoutALogFileTheScreenStays) {
    const std::string path = folder_.Path("no such folder/log");
    EXPECT_EQ(ScreenOf([&path] { Log().SetLogFile(path); }),
              "ALARM : global :  :   can not open logging file: " + path + "\n");
    EXPECT_EQ(ScreenOf([] { Log().Message(LOGGING_LEVEL::INFO, "late"); }), "INFO  : global : late\n");
}

TEST_F(LoggingTest, AfterAFailedChangeTheFormerFileCanBeNamedAgain) {
    const std::string pipe = folder_.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string path = UseFile();
    EXPECT_EQ(ScreenOf([&pipe] { Log().SetLogFile(pipe); }),  // without waiting for a reader
              "ALARM : global :  :   can not open logging file: " + pipe + "\n");
    Log().Message(LOGGING_LEVEL::INFO, "lost");
    Log().SetLogFile(path);
    Log().Message(LOGGING_LEVEL::INFO, "again");
    EXPECT_EQ(Content(path), "INFO  : global : again\n");
}

TEST(LogOutput, TellsWhetherAllWentOut) {
    LOG_OUTPUT full(open("/dev/full", O_WRONLY));
    EXPECT_FALSE(full.Write("x"));
    EXPECT_TRUE(full.Write(""));
    full.Close();
    EXPECT_FALSE(full.IsOpen());
    EXPECT_FALSE(full.Write("x"));
}

TEST_F(LoggingTest, HeaderAndFooterTellTheProgramAndItsTimes) {
    const std::string path = UseFile();
    const std::tuple<const char*, const char*, const char*> starters[] = {
        {nullptr, "4.2", ""}, {"CHAIN", nullptr, "CHAIN"}, {"CHAIN", "4.2", "CHAIN4.2"}};
    for (const auto& [process, version, starter] : starters) {
        process == nullptr ? unsetenv("PROC_NAME") : setenv("PROC_NAME", process, 1);
        version == nullptr ? unsetenv("CHAIN_VERSION") : setenv("CHAIN_VERSION", version, 1);
        Write(path, "");
        Log().Header({"full.text", "date", "1.2", "what it does", "prog\n", "2026-01-02", "me"}, "pcf.x");
        Log().Footer();
        const std::string rule = "\\*{59}\n";
        const auto lines = [](const std::string& text) {
            return std::regex_replace(text, std::regex("\\|"), "INFO  : global : ");
        };
        const std::string expected =
            lines("|\n|" + rule + "|prog\\\\x0A 1.2 - what it does\n|\n|" + rule +
                  "|compile date: 2026-01-02  compiled by: me\n|start time: .{24}  hostname: .+\n|started by: " +
                  starter + "\n|using configuration file pcf.x\n") +
            "DEBUG : global : full version: full.text\n" +
            lines("|execution time: .+ seconds?.*\n|end time: .{24}\n|" + rule);
        EXPECT_TRUE(std::regex_match(Content(path), std::regex(expected))) << Content(path);
    }
    unsetenv("PROC_NAME");
    unsetenv("CHAIN_VERSION");
}

/// What a progress line of 200 steps writes to a terminal, or to a pipe, until that many are done.
std::string ShownAfter(int steps, bool to_terminal) {
    int ends[2] = {posix_openpt(O_RDWR | O_NOCTTY), -1};
    grantpt(ends[0]);
    unlockpt(ends[0]);
    ends[1] = open(ptsname(ends[0]), O_RDWR | O_NOCTTY);
    if (!to_terminal && pipe(ends) != 0) return "no pipe";
    const int usual = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    {
        PROGRESS_LINE line(200);
        for (int i = 0; i < steps; ++i) line.Done();
    }
    dup2(usual, STDERR_FILENO);
    EXPECT_EQ(write(ends[1], "|", 1), 1);
    std::string shown;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '|';) shown += c;
    for (const int descriptor : {ends[0], ends[1], usual}) close(descriptor);
    return shown;
}

TEST(ProgressLine, ShowsEachPercentOnceToATerminalOnly) {
    const std::string clear = "                \r";
    EXPECT_EQ(ShownAfter(0, true), "");
    EXPECT_EQ(ShownAfter(1, true), "  0 % simulated\r" + clear);
    EXPECT_EQ(ShownAfter(5, true), "  0 % simulated\r  1 % simulated\r  2 % simulated\r" + clear);
    EXPECT_THAT(ShownAfter(200, true), EndsWith(" 99 % simulated\r100 % simulated\r" + clear));
    EXPECT_EQ(ShownAfter(5, false), "");
}

TEST_F(LoggingTest, PrefixCaptureAndQaFlag) {
    Log().SetPrefix("job 7");
    EXPECT_EQ(ScreenOf([] { Log().Message(LOGGING_LEVEL::INFO, "before"); }), "INFO  : job 7 : before\n");
    EXPECT_FALSE(Log().QaWarningLogged());
    Log().SetCapture(true);
    Log().Message(LOGGING_LEVEL::INFO, "kept %d", 1);
    Log().Message(LOGGING_LEVEL::QA_WARNING, "kept %d", 2);
    Log().SetCapture(false);
    Log().Message(LOGGING_LEVEL::INFO, "after");
    EXPECT_THAT(Log().CapturedLines(), ElementsAre("kept 1", "kept 2"));
    EXPECT_TRUE(Log().QaWarningLogged());
}

TEST_F(LoggingTest, ThreadsLogWholeMessages) {
    const std::string path = UseFile();
    ScreenOf([] {
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([i] {
                for (int n = 0; n < 200; ++n) {
                    Log().Message(LOGGING_LEVEL::INFO, "thread %d line %d end", i, n);
                    Log() << LOGGING_LEVEL::TRACE << "interleaves, below the threshold " << n << "\n";
                }
            });
        Log().SetPrefix("other");
        Log().SetFileThreshold(2);
        for (std::thread& thread : threads) thread.join();
    });
    std::ifstream file(path);
    int count = 0;
    for (std::string line; std::getline(file, line); ++count) EXPECT_THAT(line, EndsWith(" end"));
    EXPECT_EQ(count, 8 * 200);
}

/// How often this thread goes to sleep meanwhile.
template <class FUNCTION>
long SleepsDuring(FUNCTION function) {
    rusage before = {};
    rusage after = {};
    getrusage(RUSAGE_THREAD, &before);
    function();
    getrusage(RUSAGE_THREAD, &after);
    return after.ru_nvcsw - before.ru_nvcsw;
}

TEST_F(LoggingTest, AnEmergencyWaitsForOtherThreadsWritesForABoundedTime) {
    EXPECT_EXIT(
        {
            Log().Message(LOGGING_LEVEL::INFO, "done");
            _exit(SleepsDuring(LOGGING::BeginEmergency) < 50 ? 3 : 4);  // nobody writes
        },
        testing::ExitedWithCode(3), "");
    EXPECT_EXIT(
        {
            int ends[2];
            Log().Message(LOGGING_LEVEL::INFO, "done");
            if (pipe(ends) != 0) _exit(5);
            dup2(ends[1], STDOUT_FILENO);
            std::thread writer([] { Log().Message(LOGGING_LEVEL::INFO, "%s", std::string(1 << 20, 'x').c_str()); });
            char byte = 0;
            if (read(ends[0], &byte, 1) != 1) _exit(6);  // it writes, and is held by the full pipe
            _exit(SleepsDuring(LOGGING::BeginEmergency) > 150 ? 3 : 4);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(LoggingTest, ALogIntoAPipeWaitsForItsReader) {
    const std::string path = folder_.Path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    Log().SetLogFile(path);
    Log().SetScreenThreshold(10);
    const std::string text(1 << 20, 'x');  // a pipe holds 64 KiB
    std::thread writer([&] { Log().Message(LOGGING_LEVEL::INFO, "%s", text.c_str()); });
    std::string received;
    char block[4096];
    pollfd input = {reader, POLLIN, 0};
    while (!received.ends_with("\n") && poll(&input, 1, -1) > 0) {
        const ssize_t count = read(reader, block, sizeof block);
        if (count > 0) received.append(block, static_cast<size_t>(count));
    }
    writer.join();
    close(reader);
    EXPECT_EQ(received, "INFO  : global : " + text + "\n");
}

TEST_F(LoggingTest, AnEmergencyLineBeginsAfreshAndSilencesTheRest) {
    const std::string path = UseFile();
    const std::pair<const char*, std::string> cases[] = {{"half a li", "\n"}, {"half a line\n", ""}};
    for (const auto& [said, end] : cases) {
        Write(path, "");
        EXPECT_EXIT(
            {
                Log() << LOGGING_LEVEL::INFO << "h" << &said[1];
                LOGGING::BeginEmergency();
                LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, ("emergency" + std::string(2000, '!')).c_str());
                Log() << "ne\n";
                Log().Message(LOGGING_LEVEL::ALARM, "too late");
                _exit(3);
            },
            testing::ExitedWithCode(3), "");
        EXPECT_EQ(Content(path), "INFO  : global : " + std::string(said) + end + "ALARM : global : emergency" +
                                     std::string(974, '!') + "\n")
            << "cut at 1000 bytes, which a pipe takes at once";
    }
}

}  // namespace
