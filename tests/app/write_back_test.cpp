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
        insar_pool_.Open(folder_ / "insar" / "pool");
        log_pool_.own = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(folder_ / "log" / "pool");
        log_pool_.pool = log_pool_.own.get();
        insar_pool_.Change("value", 2);
        log_pool_.pool->Change("value", 3);
    }

    const TEMPORARY_FOLDER scratch_;
    const std::filesystem::path folder_ = scratch_.Path("");
    PARAMETER_POOL_READ_WRITE_CHANGE insar_pool_;
    LOG_POOL log_pool_;
};

TEST_F(WriteBackTest, BothPoolsReceiveTheirChangesAndTheHistoryKeepsWhatOthersEntered) {
    TryHistory(*log_pool_.pool, kEntry);
    {  // another run enters itself meanwhile, by an object of its own
        LOG_POOL other;
        PARAMETER_POOL_READ_WRITE_CHANGE other_insar(folder_ / "insar" / "pool");
        other.own = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(folder_ / "log" / "pool");
        other.pool = other.own.get();
        WriteBackPools(other, other_insar, {"other", "2", "d", "s", "e", 3});
    }
    WriteBackPools(log_pool_, insar_pool_, kEntry);
    EXPECT_EQ(insar_pool_.Get<int>("value"), 2);
    EXPECT_EQ(log_pool_.pool->Get<int>("value"), 3);
    const auto names = log_pool_.pool->Get<ARRAY<STRING>>("software_names");
    ASSERT_EQ(names.Count(), 2);
    EXPECT_EQ(names[0], STRING("other"));
    EXPECT_EQ(names[1], STRING("prog"));
}

TEST_F(WriteBackTest, AFailureOfOnePoolChangesNeither) {
    const std::string before = Content(folder_ / "log" / "pool");
    std::filesystem::rename(folder_ / "insar", folder_ / "moved");
    EXPECT_THROW(WriteBackPools(log_pool_, insar_pool_, kEntry), ERROR_PARAMETER_POOL);
    EXPECT_EQ(Content(folder_ / "log" / "pool"), before);
    EXPECT_EQ(Content(folder_ / "moved" / "pool"), before);
}

TEST_F(WriteBackTest, ALogPoolThatIsTheInsarPoolIsWrittenOnce) {
    log_pool_.own.reset();
    log_pool_.pool = &insar_pool_;
    WriteBackPools(log_pool_, insar_pool_, kEntry);
    EXPECT_EQ(Content(folder_ / "insar" / "pool").find("value INT_32 2"), 13U);
    EXPECT_EQ(insar_pool_.Get<ARRAY<int>>("software_execution_times")[0], 7);
}

TEST_F(WriteBackTest, ANameThatAPoolCanNotHoldIsRefusedBeforeTheWork) {
    EXPECT_THROW(TryHistory(*log_pool_.pool, {"a\"b", "1", "d", "s", "e", 7}), INVALID_PARAMETER_VALUE);
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
