#include <gtest/gtest.h>

#include "app/products/pool_write_back.h"
#include "app/products/software_history.h"
#include "lib/baselib/pool/pool_errors.h"
#include "tests/kit/temporary_folder.h"

namespace {

const HISTORY_ENTRY kEntry = {"prog", "1", "d", "s", "e", 7};

/// Two pools in folders of their own, as files and as the objects of a run.
class WriteBackTest : public testing::Test {
  protected:
    WriteBackTest() {
        for (const char* pool : {"log", "insar"}) {
            std::filesystem::create_directory(folder_ / pool);
            Write(folder_ / pool / "pool", "# first line\nvalue INT_32 1\n");
        }
        Open(pools_);
        pools_.insar.Change("value", 2);
        pools_.own_log->Change("value", 3);
    }

    void Open(RUN_POOLS& pools) const {
        pools.insar.Open(folder_ / "insar" / "pool");
        pools.own_log = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(folder_ / "log" / "pool");
    }

    const TEMPORARY_FOLDER scratch_;
    const std::filesystem::path folder_ = scratch_.Path("");
    RUN_POOLS pools_;
    SIGNALS_HELD_BACK held_back_;
};

bool TerminationWaits() {
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return sigismember(&mask, SIGTERM) == 1;
}

TEST_F(WriteBackTest, BothPoolsReceiveTheirChangesAndTheHistoryKeepsWhatOthersEntered) {
    TryHistory(pools_.HistoryPool(), kEntry);
    {  // another run enters itself meanwhile, by an object of its own
        RUN_POOLS other;
        Open(other);
        WriteBackPools(other, {"other", "2", "d", "s", "e", 3}, held_back_);
    }
    WriteBackPools(pools_, kEntry, held_back_);
    EXPECT_TRUE(TerminationWaits()) << "the run's work is done";
    EXPECT_EQ(pools_.insar.Get<int>("value"), 2);
    EXPECT_EQ(pools_.HistoryPool().Get<int>("value"), 3);
    const auto names = pools_.HistoryPool().Get<ARRAY<STRING>>("software_names");
    ASSERT_EQ(names.Count(), 2);
    EXPECT_EQ(names[0], STRING("other"));
    EXPECT_EQ(names[1], STRING("prog"));
}

TEST_F(WriteBackTest, AFailureOfOnePoolChangesNeither) {
    const std::string before = Content(folder_ / "log" / "pool");
    std::filesystem::rename(folder_ / "insar", folder_ / "moved");
    EXPECT_THROW(WriteBackPools(pools_, kEntry, held_back_), ERROR_PARAMETER_POOL);
    EXPECT_FALSE(TerminationWaits());
    EXPECT_EQ(Content(folder_ / "log" / "pool"), before);
    EXPECT_EQ(Content(folder_ / "moved" / "pool"), before);
}

TEST_F(WriteBackTest, ALogPoolThatIsTheInsarPoolIsWrittenOnce) {
    pools_.own_log.reset();
    WriteBackPools(pools_, kEntry, held_back_);
    EXPECT_EQ(Content(folder_ / "insar" / "pool").find("value INT_32 2"), 13U);
    EXPECT_EQ(pools_.insar.Get<ARRAY<int>>("software_execution_times")[0], 7);
}

TEST(EntryOfRun, ClocksThatWereSetBackGiveNoNegativeTime) {
    const VERSION_RECORD version = {"full", "date", "1.2", "what", "prog", "", ""};
    setenv("TZ", "UTC", 1);
    tzset();
    const HISTORY_ENTRY entry = EntryOfRun(version, 86399, 86390);
    EXPECT_EQ(entry.execution_time_s, 0);
    EXPECT_EQ(entry.start_time, "1970-01-01T23:59:59");
    EXPECT_EQ(EntryOfRun(version, 10, 75).execution_time_s, 65);
}

}  // namespace
