#include "lib/baselib/controller/fatal_signals.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "lib/baselib/logging/logging.h"
#include "tests/kit/temporary_folder.h"

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

    WORKING_FOLDER folder_;
};

TEST_F(FatalSignalsTest, EachSignalOfTheListHasItsTwoLinesAndOthersKeepTheirAction) {
    const char* const caught[] = {"1: hangup",
                                  "2: interrupt (rubout)",
                                  "3: quit (ASCII FS)",
                                  "4: illegal instruction (not reset when caught)",
                                  "6: IOT instruction",
                                  "7: bus error",
                                  "8: floating point exception",
                                  "11: segmentation violation",
                                  "15: software termination signal from kill",
                                  "23: urgent socket condition",
                                  "24: exceeded cpu limit",
                                  "25: exceeded file size limit",
                                  "31: bad argument to system call"};
    for (const std::string text : caught) {
        std::filesystem::remove("log");
        EXPECT_EQ(SignalText(std::stoi(text)), text.substr(text.find(' ') + 1));
        EXPECT_EXIT((Prepare(), raise(std::stoi(text))), ExitedWithCode(1), "") << text;
        EXPECT_EQ(Content("log"), "ALARM : global : got fatal signal " + text +
                                      "\nALARM : global : ORQ_MSG|ERROR|x\\x0Ay got fatal signal " + text + "\n");
        ExpectErrorStatus();
    }
    const char* const others[] = {"5: trace trap (not reset when caught)", "13: write on a pipe with no one to read it",
                                  "14: alarm clock", "16: ", "30: power-fail restart"};
    for (const std::string text : others) {
        EXPECT_EQ(SignalText(std::stoi(text)), text.substr(text.find(' ') + 1));
        EXPECT_EXIT((Prepare(), raise(std::stoi(text))), KilledBySignal(std::stoi(text)), "") << text;
    }
    EXPECT_EXIT((std::signal(SIGALRM, SIG_IGN), Prepare(), raise(SIGALRM)), KilledBySignal(SIGALRM), "")
        << "ignored by whoever started the program";
}

TEST_F(FatalSignalsTest, WithoutControllerMessagesThereIsOneLine) {
    EXPECT_EXIT((Prepare(false), raise(SIGTERM)), ExitedWithCode(255), "") << "before initialisation";
    EXPECT_EQ(Content("OK"), "0");
    EXPECT_EXIT(
        (Prepare(false), RegisterForFatalSignals(new FATAL_SIGNAL_REACTION("x", false, "OK", "ERROR")), raise(SIGTERM)),
        ExitedWithCode(1), "");
    const std::string line = "ALARM : global : got fatal signal 15: software termination signal from kill\n";
    EXPECT_EQ(Content("log"), line + line);
    ExpectErrorStatus();
}

TEST_F(FatalSignalsTest, ComesThroughWhileThreadsLogAndSeveralSignalsArrive) {
    const auto die = [] {
        Prepare();
        Log().SetScreenThreshold(10);
        std::atomic<bool> go = false;
        std::atomic<int> busy = 0;
        for (int i = 0; i < 4; ++i) {
            std::thread([&busy] {
                for (Log().Message(LOGGING_LEVEL::INFO, "busy"), ++busy;;) Log().Message(LOGGING_LEVEL::INFO, "busy");
            }).detach();
            std::thread([&go] {
                while (!go) sched_yield();
                raise(SIGTERM);
            }).detach();
        }
        while (busy < 4) sched_yield();
        go = true;
        for (;;) Log() << LOGGING_LEVEL::INFO << "streamed " << 1 << "\n";
    };
    EXPECT_EXIT(die(), ExitedWithCode(1), "");
    const std::string text = " got fatal signal 15: software termination signal from kill\n";
    const std::string log = Content("log");
    EXPECT_THAT(log, testing::EndsWith("\nALARM : global :" + text + "ALARM : global : ORQ_MSG|ERROR|x\\x0Ay" + text));
    EXPECT_EQ(log.find(" got fatal"), log.rfind("ALARM : global : ORQ_MSG") - text.size()) << "once each";
    ExpectErrorStatus();
}

TEST_F(FatalSignalsTest, AScreenThatTakesNothingOrHasNoReaderDoesNotHoldTheEndUp) {
    for (const bool reader : {true, false}) {
        const auto die = [reader] {
            int ends[2];
            if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) _exit(9);
            Prepare();
            if (reader) {
                std::thread([] {
                    for (;;) Log().Message(LOGGING_LEVEL::INFO, "soon waits for the pipe, with the lock in its hands");
                }).detach();
                for (pollfd room = {ends[1], POLLOUT, 0}; poll(&room, 1, 0) > 0;) sched_yield();  // until it is full
            } else {
                close(ends[0]);
            }
            raise(SIGTERM);
        };
        EXPECT_EXIT(die(), ExitedWithCode(1), "");
        EXPECT_THAT(Content("log"), HasSubstr("ORQ_MSG|ERROR|x\\x0Ay got fatal signal 15"));
        ExpectErrorStatus();
        std::filesystem::remove("log");
    }
}

/// Uses up the stack; the sum keeps the compiler from turning the recursion into a loop.
int Overflow(int depth) {
    volatile char block[4096];
    block[depth % 4096] = 1;
    return depth < 0 ? 0 : Overflow(depth + 1) + block[depth % 4096];
}

TEST_F(FatalSignalsTest, StackOverflowsAndArithmeticFaultsInThreadsAreReported) {
    EXPECT_EXIT((Prepare(), Overflow(0)), ExitedWithCode(1), "");
    EXPECT_THAT(Content("log"), HasSubstr("got fatal signal 11: segmentation violation\n"));
    const volatile double zero = 0.0;
    const auto divide = [&zero] { const volatile double infinite [[maybe_unused]] = 1.0 / zero; };
    EXPECT_EXIT((Prepare(), std::thread(divide).join()), ExitedWithCode(1), "");
    EXPECT_THAT(Content("log"), HasSubstr("got fatal signal 8: floating point exception\n"));
}

}  // namespace
