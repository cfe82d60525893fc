#include "simulation/threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "lib/baselib/errors/enum_base.h"
#include "lib/baselib/errors/error_exception.h"
#include "simulation/scene_blocks.h"
#include "simulation/thread_arg.h"
#include "tests/kit/log_capture.h"

namespace {

using testing::HasSubstr;
using testing::Not;

struct TEST_ARG : THREAD_ARG {
    pthread_t thread{};
};
using RUNNER = THREADS<TEST_ARG, unsigned int>;

void SetParallel(const char* text) {
    setenv("PARALLEL", text, 1);
}

TEST(Threads, CutsTheRowsIntoContiguousBlocks) {
    struct CASE {
        const char* parallel;
        unsigned first, end;
        std::vector<std::pair<unsigned, unsigned>> blocks;  // start, length
    };
    const CASE cases[] = {{"4", 0, 10, {{0, 3}, {3, 3}, {6, 2}, {8, 2}}},
                          {"7", 5, 8, {{5, 1}, {6, 1}, {7, 1}}},
                          {"1", 5, 8, {{5, 3}}},
                          {"2", 4294967290U, 4294967295U, {{4294967290U, 3}, {4294967293U, 2}}},
                          {"3", 0, 0, {}}};
    for (const CASE& c : cases) {
        SCOPED_TRACE(std::string(c.parallel) + " threads from row " + std::to_string(c.first));
        SetParallel(c.parallel);
        RUNNER runner(c.first, c.end, [](TEST_ARG* argument) { argument->thread = pthread_self(); });
        runner.Run();
        ASSERT_EQ(static_cast<int>(c.blocks.size()), runner.Count());
        for (int i = 0; i < runner.Count(); ++i) {
            const TEST_ARG& argument = runner.Arguments()[i];
            EXPECT_EQ(c.blocks[static_cast<size_t>(i)], std::pair(argument.start, argument.length));
            EXPECT_EQ(static_cast<unsigned>(i), argument.thread_number);
            EXPECT_EQ(0U, argument.status);
            EXPECT_EQ(std::string(c.parallel) == "1", pthread_equal(argument.thread, pthread_self()) != 0);
        }
    }
    EXPECT_THROW(RUNNER(3, 2, [](TEST_ARG*) {}), ERROR_ARGUMENT);
}

TEST(Threads, RowsOfASlabAreSharedOutByTheirCells) {
    struct CASE {
        std::vector<int> cells;
        int threads;
        std::vector<long long> starts;
    };
    const CASE cases[] = {{{}, 2, {7, 12}},  // no list: 10 rows of equal cost
                          {{1, 1, 1, 1, 1, 1}, 3, {7, 9, 11}},
                          {{9, 8, 1, 1, 1, 1, 1, 1, 1, 1}, 2, {7, 9}},
                          {{0, 0, 1, 2, 3, 4, 5}, 2, {7, 13}},
                          {{100, 1, 1}, 3, {7, 8, 9}},
                          {{1, 1, 100}, 3, {7, 8, 9}},
                          {{0, 0, 0}, 2, {7, 8}},
                          {{5, 5}, 8, {7, 8}}};
    for (const CASE& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.cells));
        SCENE scene;
        const int rows = c.cells.empty() ? 10 : static_cast<int>(c.cells.size());
        scene.simulated = {7, 7 + rows, 0, 200};
        for (const int count : c.cells) scene.cells.push_back({20, 20 + count});
        const std::vector<ROW_BLOCK> blocks = BlocksOf(scene, c.threads);
        std::vector<long long> starts;
        long long end = 7;
        for (const ROW_BLOCK& block : blocks) {
            EXPECT_EQ(end, block.start);
            EXPECT_GT(block.length, 0);
            end = block.start + block.length;
            starts.push_back(block.start);
        }
        EXPECT_EQ(7 + rows, end);
        EXPECT_EQ(c.starts, starts);
    }
}

TEST(Threads, TheEnvironmentGivesTheCount) {
    unsetenv("PARALLEL");
    EXPECT_EQ(sysconf(_SC_NPROCESSORS_ONLN), ThreadCount());
    const std::pair<const char*, int> numbers[] = {
        {"3", 3}, {"4x", 4}, {"99999999999999999999", std::numeric_limits<int>::max()}};
    for (const auto& [text, count] : numbers) {
        SetParallel(text);
        EXPECT_EQ("", LoggedBy([&, count = count] { EXPECT_EQ(count, ThreadCount()); }));
    }
    SetParallel("-2");
    EXPECT_THAT(LoggedBy([] { EXPECT_EQ(1, ThreadCount()); }), HasSubstr("WARN  : global : PARALLEL: \"-2\""));
    for (const char* const text : {"0", "x"}) {
        SetParallel(text);
        EXPECT_EQ("", LoggedBy([] { EXPECT_EQ(1, ThreadCount()); })) << "once per run";
    }
}

TEST(Threads, AnyFailureIsLoggedWithItsRowsAndEndsTheRunAfterTheJoin) {
    const struct {
        const char* reason;
        std::function<void(TEST_ARG*)> fail;
    } ways[] = {
        {"failed with status 42", [](TEST_ARG* argument) { argument->status = 42; }},
        {"not enough memory", [](TEST_ARG*) { throw ERROR_NO_MEMORY(); }},
        {"a plain text", [](TEST_ARG*) { throw "a plain text"; }},
        {"a standard error", [](TEST_ARG*) { throw std::runtime_error("a standard error"); }},
        {"enumeration data type - invalid value of class C: v",
         [](TEST_ARG*) { throw BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE("v", "C", ""); }},
        {"exception of an unknown kind", [](TEST_ARG*) { throw 7; }},
    };
    const std::pair<const char*, const char*> threads_and_rows[] = {{"1", "rows 0..19: "}, {"4", "rows 15..19: "}};
    for (const auto& [parallel, rows] : threads_and_rows) {
        SetParallel(parallel);
        for (const auto& way : ways) {
            SCOPED_TRACE(std::string(parallel) + ": " + way.reason);
            std::atomic<int> started = 0;
            const std::string log = LoggedBy([&] {
                try {
                    RUNNER runner(0, 20, [&](TEST_ARG* argument) {
                        ++started;
                        if (argument->start + argument->length > 10) way.fail(argument);
                    });
                    runner.Run();
                    ADD_FAILURE() << "no exception";
                } catch (const char* text) {
                    EXPECT_STREQ("error in thread execution", text);
                }
            });
            EXPECT_THAT(log, HasSubstr(std::string("ALARM : global : ") + rows + way.reason + "\n"));
            EXPECT_THAT(log, Not(HasSubstr("rows 0..4")));
            EXPECT_EQ(std::atoi(parallel), started) << "all threads have run, and were joined, before the runner went";
        }
    }
}

TEST(Threads, TheDestructorTellsOfAFailureThatNobodyHasSeen) {
    SetParallel("3");
    std::string seen;
    try {
        RUNNER runner(0, 3, [](TEST_ARG*) { throw "every thread"; });
        try {
            runner.Run();
        } catch (const char* text) {
            seen = text;
        }
    } catch (const char* text) {
        seen += std::string(", ") + text;
    }
    EXPECT_EQ("error in thread execution, error in thread execution", seen);
}

TEST(ThreadsDeathTest, AThreadThatTheSystemDoesNotGiveIsExplained) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer can not live with little address space";
#endif
    const auto run_in_little_memory = [] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        SetParallel("100");
        const rlimit limit{256 << 20, 256 << 20};  // 8 MiB of stack per thread
        setrlimit(RLIMIT_AS, &limit);
        alarm(60);  // instead of a hang
        std::atomic<int> ended = 0;
        std::atomic<bool> held = true;  // until the first thread that can not be made
        try {
            RUNNER runner(0, 100, [&](TEST_ARG*) {
                held.wait(true);
                ++ended;
            });
            const std::shared_ptr<void> release(nullptr, [&](void*) {
                held = false;
                held.notify_all();
            });
            runner.Run();
        } catch (const char* text) {
            if (std::string(text) == "can not create thread" && ended > 0) _exit(7);
        }
    };
    EXPECT_EXIT(run_in_little_memory(), testing::ExitedWithCode(7),
                "can not create thread due to error number: 11\n.*reason: Resource temporarily unavailable");
}

}  // namespace
