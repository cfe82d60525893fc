#include "lib/baselib/controller/fatal_signals.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "lib/baselib/logging/logging.h"
#include "tests/controller/temporary_folder.h"

namespace {

using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::KilledBySignal;

/// The dying process of a test: log file "log", status files "OK" and "ERROR".
class FatalSignalsTest : public testing::Test {
  protected:
    static void Prepare(bool registered = true) {
        Log().SetLogFile("log");
        InstallFatalSignalHandlers();
        Write("OK", "0");
        if (registered) RegisterForFatalSignals(new FATAL_SIGNAL_REACTION("x\ny", true, "OK", "ERROR"));
    }
    static void ExpectErrorStatus() {
        EXPECT_EQ(Content("ERROR"), "1");
        EXPECT_FALSE(std::filesystem::exists("OK"));
    }

    TEMPORARY_FOLDER folder_;
};

TEST_F(FatalSignalsTest, EachSignalOfTheListHasItsTwoLines) {
    struct CASE {
        int number;
        const char* text;
    };
    const CASE cases[] = {{1, "hangup"},
                          {2, "interrupt (rubout)"},
                          {3, "quit (ASCII FS)"},
                          {4, "illegal instruction (not reset when caught)"},
                          {6, "IOT instruction"},
                          {8, "floating point exception"},
                          {7, "bus error"},
                          {11, "segmentation violation"},
                          {31, "bad argument to system call"},
                          {15, "software termination signal from kill"},
                          {23, "urgent socket condition"},
                          {24, "exceeded cpu limit"},
                          {25, "exceeded file size limit"}};
    for (const CASE& c : cases) {
        std::filesystem::remove("log");
        EXPECT_EXIT((Prepare(), raise(c.number)), ExitedWithCode(1), "") << c.number;
        const std::string text = std::to_string(c.number) + ": " + c.text + "\n";
        EXPECT_EQ(Content("log"), "ALARM : global : got fatal signal " + text +
                                      "ALARM : global : ORQ_MSG|ERROR|x\\x0Ay got fatal signal " + text);
        ExpectErrorStatus();
    }
}

TEST_F(FatalSignalsTest, OtherSignalsKeepTheirAction) {
    EXPECT_EXIT((Prepare(), raise(SIGPIPE)), KilledBySignal(SIGPIPE), "");
    EXPECT_EXIT((Prepare(), raise(SIGUSR1)), KilledBySignal(SIGUSR1), "");
    EXPECT_EXIT((std::signal(SIGALRM, SIG_IGN), Prepare(), raise(SIGALRM)), KilledBySignal(SIGALRM), "")
        << "ignored by whoever started the program";
    EXPECT_EQ(Content("log"), "");
}

TEST_F(FatalSignalsTest, BeforeInitialisationTheStatusIs255) {
    EXPECT_EXIT((Prepare(false), raise(SIGTERM)), ExitedWithCode(255), "");
    EXPECT_EQ(Content("log"), "ALARM : global : got fatal signal 15: software termination signal from kill\n");
    EXPECT_EQ(Content("OK"), "0");
}

TEST_F(FatalSignalsTest, WithoutControllerMessagesThereIsOneLine) {
    const auto die = [] {
        Prepare(false);
        RegisterForFatalSignals(new FATAL_SIGNAL_REACTION("x", false, "OK", "ERROR"));
        raise(SIGINT);
    };
    EXPECT_EXIT(die(), ExitedWithCode(1), "");
    EXPECT_EQ(Content("log"), "ALARM : global : got fatal signal 2: interrupt (rubout)\n");
    ExpectErrorStatus();
}

TEST_F(FatalSignalsTest, AStatusFileThatCannotBeWrittenIsTold) {
    std::filesystem::create_directories("ERROR/full");
    EXPECT_EXIT((Prepare(), raise(SIGTERM)), ExitedWithCode(1), "");
    EXPECT_THAT(Content("log"), HasSubstr("\nWARN  : global : Can not create file ERROR!\n"));
}

TEST_F(FatalSignalsTest, ComesThroughWhileThreadsLogAndSeveralSignalsArrive) {
    const auto die = [] {
        Prepare();
        Log().SetScreenThreshold(10);
        std::atomic<bool> go = false;
        for (int i = 0; i < 4; ++i) {
            std::thread([&go] {
                while (!go) Log().Message(LOGGING_LEVEL::INFO, "busy");
                for (;;) Log().Message(LOGGING_LEVEL::INFO, "busy");
            }).detach();
            std::thread([&go] {
                while (!go) sched_yield();
                raise(SIGTERM);
            }).detach();
        }
        usleep(20000);
        go = true;
        for (;;) Log() << LOGGING_LEVEL::INFO << "streamed " << 1 << "\n";
    };
    EXPECT_EXIT(die(), ExitedWithCode(1), "");
    const std::string log = Content("log");
    const std::string last_lines =
        "ALARM : global : got fatal signal 15: software termination signal from kill\n"
        "ALARM : global : ORQ_MSG|ERROR|x\\x0Ay got fatal signal 15: software termination signal from kill\n";
    EXPECT_THAT(log, testing::EndsWith("\n" + last_lines));
    EXPECT_EQ(log.find("fatal signal 15"), log.size() - last_lines.size() + 21) << "once each";
    ExpectErrorStatus();
}

TEST_F(FatalSignalsTest, AScreenThatTakesNothingDoesNotHoldTheEndUp) {
    const auto die = [] {
        int ends[2];
        if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) _exit(9);
        Prepare();
        std::thread([] {
            for (;;)
                Log().Message(LOGGING_LEVEL::INFO, "this thread soon waits for the pipe, with the lock in its hands");
        }).detach();
        usleep(50000);
        raise(SIGTERM);
    };
    EXPECT_EXIT(die(), ExitedWithCode(1), "");
    EXPECT_THAT(Content("log"), HasSubstr("ORQ_MSG|ERROR|x\\x0Ay got fatal signal 15"));
    ExpectErrorStatus();
}

TEST_F(FatalSignalsTest, AScreenWithoutReaderDoesNotKillTheHandler) {
    const auto die = [] {
        int ends[2];
        if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) _exit(9);
        Prepare();
        close(ends[0]);
        close(ends[1]);
        raise(SIGTERM);
    };
    EXPECT_EXIT(die(), ExitedWithCode(1), "");
    ExpectErrorStatus();
}

/// Uses up the stack; the sum keeps the compiler from turning the recursion into a loop.
int Overflow(int depth) {  // NOLINT(misc-no-recursion)
    volatile char block[4096];
    block[depth % 4096] = 1;
    return depth < 0 ? 0 : Overflow(depth + 1) + block[depth % 4096];
}

TEST_F(FatalSignalsTest, AStackOverflowIsReported) {
    EXPECT_EXIT((Prepare(), Overflow(0)), ExitedWithCode(1), "");
    EXPECT_THAT(Content("log"), HasSubstr("got fatal signal 11: segmentation violation\n"));
}

TEST_F(FatalSignalsTest, AnArithmeticFaultInAThreadEndsTheRun) {
    const auto die = [] {
        Prepare();
        std::thread([] {
            const volatile double zero = 0.0;
            const volatile double infinite = 1.0 / zero;
            (void)infinite;
        }).join();
    };
    EXPECT_EXIT(die(), ExitedWithCode(1), "");
    EXPECT_THAT(Content("log"), HasSubstr("got fatal signal 8: floating point exception\n"));
    ExpectErrorStatus();
}

TEST(SignalText, IsEmptyWhereThereIsNone) {
    for (const int number : {-1, 0, 16, 32, 64}) EXPECT_STREQ(SignalText(number), "") << number;
    EXPECT_STREQ(SignalText(5), "trace trap (not reset when caught)");
    EXPECT_STREQ(SignalText(13), "write on a pipe with no one to read it");
    EXPECT_STREQ(SignalText(14), "alarm clock");
    EXPECT_STREQ(SignalText(30), "power-fail restart");
}

}  // namespace
