// Updating: which lines change, who may update, and what a failure or another writer leaves behind.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "lib/baselib/pool/pool_transaction.h"
#include "tests/kit/in_process.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;

/// Writes the value 5 as the key "k" and returns the pool's content.
std::string Updated(const std::string& content, const std::vector<std::string>& comments = {}) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make(content);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    pool.Change("k", 5, comments);
    pool.Update();
    return Content(path);
}

bool Blocks(int signal) {
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

TEST(PoolUpdate, ChangesTheEntrysOwnLinesOnly) {
    const std::pair<const char*, const char*> cases[] = {
        {"# a\n\n#b\nk INT_32 1\n\n\n# c\n", "# a\n\n#b\nk INT_32 5\n\n\n# c\n"},
        {"a STR \"x\"\nk STR \"a b\" rest\nb BYT 1\n", "a STR \"x\"\nk INT_32 5\n\nb BYT 1\n"},
        {"k STR_V 0 2\n{\n\"k INT_32 1\"\n \"}\"\n}\nb BYT 1\n", "k INT_32 5\n\nb BYT 1\n"},
        {"k BYT_M 2 1\n  {\n{\n1\n}\n {\n2\n }\n}\n\nz BYT 1\n", "k INT_32 5\n\nz BYT 1\n"},
        // A line with a tag as second word is never an element, not even in a block.
        {"v STR_V 0 1\n{\nk INT_32\n}\nk BYT 1\n", "v STR_V 0 1\n{\nk INT_32 5\n\n}\nk BYT 1\n"},
        {"k BYT_V 0 9\n{\n1\n2\nb BYT 1\n", "k INT_32 5\n\nb BYT 1\n"},  // never closed
        {"k STR_V 0 1\n{\n\"x\"\n}\n\n\n# c\nb BYT 1\n", "k INT_32 5\n\n\n# c\nb BYT 1\n"},
        {"k BYT_M 1 1\n{\n{\n1\n}\n}\n# c\n", "k INT_32 5\n\n# c\n"},
        {"k INT_32 1\n indented\n\nb BYT 1\n", "k INT_32 5\n\n indented\n\nb BYT 1\n"},
        {"b BYT 1", "b BYT 1\nk INT_32 5\n\n"},
        {"a BYT 1\r\n# c\r\rk BYT 1\r\n\r\nb BYT 1\r\n", "a BYT 1\r\n# c\r\rk INT_32 5\n\nb BYT 1\r\n"}};
    for (const auto& [before, after] : cases) {
        EXPECT_EQ(Updated(before), after) << before;
        EXPECT_EQ(Updated(after), after) << "once more";
    }
    const std::string binary("# \0\xff\n\x01 b\nb BYT 1\n", 17);
    EXPECT_EQ(Updated(binary), binary + "k INT_32 5\n\n");
    EXPECT_EQ(Updated("a BYT 1\nk BYT 1\n", {" made", " twice"}), "a BYT 1\n# made\n# twice\nk INT_32 5\n\n");
}

TEST(PoolUpdate, WritesTheDocumentedLayout) {
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL_READ_WRITE_CHANGE pool(folder.Path());
    ARRAY<COMPLEX<float>> vector(2, 1);
    vector[2] = {0.1F, -2.0F};
    pool.Change("late", 1.0);
    pool.Change("vector", vector);
    pool.Change("matrix", MATRIX<short>(1, 2));
    pool.Change("late", 2.0);  // the last value counts, at the last place
    pool.Update();
    EXPECT_EQ(Content(folder.Path()),
              "vector CPL_6_V 2 1\n{\n    0.100000001 -2\n}\n\n"
              "matrix INT_16_M 1 2\n{\n    {\n        0\n        0\n    }\n}\n\nlate FLT_15 2\n\n");
}

TEST(PoolUpdate, KeepsTheFilesIdentityAndLeavesNothingBehind) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    ASSERT_EQ(chmod(path.c_str(), 0642), 0);
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    std::filesystem::create_symlink("test.pool", folder.Path("link.pool"));
    PARAMETER_POOL_READ_WRITE_CHANGE pool(folder.Path("link.pool"));
    pool.Change("k", 2);
    EXPECT_THAT(ErrorAndLogOf([&] { pool.Update(); }),
                testing::MatchesRegex("DEBUG : global : copy .*/pool_...... to .*/link.pool\n"));
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_mode, after.st_mode);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path(".")), {}), 2);
}

TEST(PoolUpdate, OneAfterTheOtherBothSurvive) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\n\n");
    PARAMETER_POOL_READ_WRITE_CHANGE first(path);
    PARAMETER_POOL_READ_WRITE_CHANGE second(folder.Path("./test.pool"));
    second.Change("c", 3);
    first.Change("b", 2);
    first.Update();
    second.Update();
    first.Change("a", 9);
    first.Update();
    EXPECT_EQ(Content(path), "a INT_32 9\n\nb INT_32 2\n\nc INT_32 3\n\n");
    folder.Make("a INT_32 7\n");  // by another program
    first.Change("b", 4);
    first.Update();
    EXPECT_EQ(Content(path), "a INT_32 7\nb INT_32 4\n\n");
}

TEST(PoolUpdate, ReachesTheFileThatReplacedTheOpenedOne) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    pool.Change("b", 2);
    std::filesystem::rename(folder.Make("k INT_32 7\n", "edited"), path);
    pool.Update();
    EXPECT_EQ(Content(path), "k INT_32 7\nb INT_32 2\n\n");
    std::filesystem::remove(path);
    pool.Change("b", 3);
    EXPECT_THAT(ErrorAndLogOf([&] { pool.Update(); }), HasSubstr("No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PoolUpdate, AnUnwritableFolderOrFileLosesNothing) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0) {  // permission bits do not hold for root
        ASSERT_EQ(chown(folder.Path(".").c_str(), kNobody, kNobody) + chown(path.c_str(), kNobody, kNobody), 0);
    }
    const auto fail_twice = [&] {
        if (geteuid() == 0 && setuid(kNobody) != 0) _exit(2);
        PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
        pool.Change("k", 2);
        chmod(folder.Path(".").c_str(), 0555);
        const std::string corrupted = ErrorAndLogOf([&] { pool.Update(); });
        const std::string late = ErrorAndLogOf([&] { PARAMETER_POOL_READ_WRITE_CHANGE again(path); });
        chmod(folder.Path(".").c_str(), 0755);
        chmod(path.c_str(), 0444);
        const std::string refused = ErrorAndLogOf([&] { pool.Update(); });
        const std::string opening = ErrorAndLogOf([&] { PARAMETER_POOL_READ_WRITE_CHANGE again(path); });
        std::fputs((corrupted + late + refused + opening).c_str(), stderr);
        if (Content(path) != "k INT_32 1\n") _exit(1);
        chmod(path.c_str(), 0644);
        pool.Update();  // the entry still waits
        _exit(0);
    };
    EXPECT_EXIT(fail_twice(), testing::ExitedWithCode(0),
                testing::AllOf(HasSubstr("pool error - corrupted parameter pool file\n"),
                               HasSubstr("Permission denied"), HasSubstr("can not update parameter pool: "),
                               HasSubstr("the corrupted parameter pool is: none, no file can be made in /"),
                               HasSubstr("the original parameter pool is NOT CHANGED !!"),
                               HasSubstr("pool error - parameter pool update(): insufficient file permission\n"),
                               HasSubstr("no permission to change pool file: "),
                               HasSubstr("takes no new file, an update needs one: Permission denied"),
                               HasSubstr("can not open pool file for update " + path)));
    EXPECT_EQ(Content(path), "k INT_32 2\n\n");
}

TEST(PoolUpdate, TellsWhyItCanNotBeWritten) {
    const TEMPORARY_FOLDER folder;
    const std::string content = "k INT_32 1\n" + std::string(100'000, '\n');
    const std::string path = folder.Make(content);
    const auto limited = [&path] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit less{50'000, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &less);
        PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
        pool.Change("k", 2);
        std::fputs(ErrorAndLogOf([&] { pool.Update(); }).c_str(), stderr);
        _exit(0);
    };
    EXPECT_EXIT(limited(), testing::ExitedWithCode(0), "File too large");
    EXPECT_EQ(Content(path), content);
}

TEST(PoolUpdate, OfTwoObjectsOnOneFileIsOne) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\n\n");
    std::filesystem::create_symlink("test.pool", folder.Path("link.pool"));
    PARAMETER_POOL_READ_WRITE_CHANGE first(path);
    PARAMETER_POOL_READ_WRITE_CHANGE second(folder.Path("link.pool"));
    first.Change("a", 2);
    second.Change("b", 3);
    {
        SIGNALS_HELD_BACK held_back;
        POOL_TRANSACTION({&first, &second}).Commit(held_back);
        EXPECT_TRUE(Blocks(SIGTERM));
    }
    EXPECT_FALSE(Blocks(SIGTERM));
    EXPECT_EQ(Content(path), "a INT_32 2\n\nb INT_32 3\n\n");
    EXPECT_EQ(first.Get<int>("b"), 3);
}

TEST(PoolUpdate, ThatWaitsForOneOfTwoPoolsTooLongLeavesBothUnlocked) {
    const TEMPORARY_FOLDER folder;
    const POOL_FILE others[] = {POOL_FILE(folder.Make("k INT_32 1\n", "a")),
                                POOL_FILE(folder.Make("k INT_32 1\n", "b"))};
    PARAMETER_POOL_READ_WRITE_CHANGE first(folder.Path("a"));
    PARAMETER_POOL_READ_WRITE_CHANGE second(folder.Path("b"));
    for (const POOL_FILE& locked : others) {
        locked.Lock(POOL_FILE::LOCK::EXCLUSIVE);
        EXPECT_THROW(POOL_TRANSACTION({&first, &second}, 0), ERROR_PARAMETER_POOL);
        for (const POOL_FILE& other : others) other.Lock(POOL_FILE::LOCK::EXCLUSIVE, 0);
        for (const POOL_FILE& other : others) other.Unlock();
    }
}

TEST(PoolUpdate, OfTwoPoolsOfWhichOneCanNotBeWrittenChangesNeither) {
    for (const bool room_for_copies : {false, true}) {
        const TEMPORARY_FOLDER folder;
        const std::string old = "k INT_32 1\n";
        folder.Make(old);
        std::filesystem::create_directory(folder.Path("disk"));
        const int status = InProcess([&] {
            if (!MountSmallDisk(folder.Path("disk"), "size=64k")) _exit(77);
            std::string path = folder.Make(old, "disk/pool");
            const std::string other =
                folder.Make(std::string(14 * 4096, 'x'), "disk/other");  // of 16 blocks one is left
            if (room_for_copies && mount(path.c_str(), folder.Make("", "pool").c_str(), "", MS_BIND, nullptr) != 0)
                _exit(77);
            if (room_for_copies) path = folder.Path("pool");
            PARAMETER_POOL_READ_WRITE_CHANGE first(folder.Path());
            PARAMETER_POOL_READ_WRITE_CHANGE second(path);
            first.Change("k", 2);
            second.Change("v", ARRAY<int>(0, 2000));
            POOL_TRANSACTION transaction({&first, &second});
            SIGNALS_HELD_BACK held_back;
            const std::string log = ErrorAndLogOf([&] { transaction.Commit(held_back); });
            EXPECT_FALSE(Blocks(SIGTERM));
            EXPECT_THAT(log,
                        testing::StartsWith(room_for_copies ? "parameter pool error\n" : "pool error - corrupted"));
            EXPECT_THAT(log, HasSubstr(room_for_copies ? "No space left on device (writing)\n" : "is NOT CHANGED !!"));
            for (const std::string& pool : {folder.Path(), path}) EXPECT_EQ(Content(pool), old);
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path("")), {}), room_for_copies ? 3 : 2);
            unlink(other.c_str());
            transaction.Commit(held_back);
            EXPECT_EQ(Content(folder.Path()), "k INT_32 2\n\n");
            EXPECT_GT(Content(path).size(), 8192U);
            _exit(testing::Test::HasFailure() ? 1 : 0);
        });
        if (status == 77) GTEST_SKIP() << "no right to mount a small disk";
        EXPECT_EQ(status, 0);
    }
}

TEST(PoolUpdate, ASignalThatWaitsPutsTheOldContentBack) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    const auto interrupted = [&path] {
        sigset_t termination;
        sigemptyset(&termination);
        sigaddset(&termination, SIGTERM);
        sigprocmask(SIG_BLOCK, &termination, nullptr);
        raise(SIGTERM);
        PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
        pool.Change("k", 2);
        std::fputs(ErrorAndLogOf([&] { pool.Update(); }).c_str(), stderr);
        sigprocmask(SIG_UNBLOCK, &termination, nullptr);
    };
    EXPECT_EXIT(interrupted(), testing::KilledBySignal(SIGTERM),
                testing::AllOf(testing::StartsWith("parameter pool error\n"),
                               HasSubstr("a signal came during the update of the pools")));
    EXPECT_EQ(Content(path), "k INT_32 1\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path(".")), {}), 1);
}

TEST(LeftOvers, OfWhichAPoolIsTheBeginningStopTheRun) {
    struct CASE {
        const char* what;
        std::string pool;
        bool refused;
    };
    const std::string complete = "k INT_32 1\n\nn STR \"x\"\n\n";
    const CASE cases[] = {
        {"emptied", "", true},
        {"cut off", complete.substr(0, 15), true},
        {"blocks that did not reach the disk", complete.substr(0, 5) + std::string(complete.size() - 5, '\0'), true},
        {"only the removal is missing", complete, false},
        {"not truncated yet", "k INT_32 0\n\n", false}};
    for (const CASE& c : cases) {
        const TEMPORARY_FOLDER folder;
        const std::string path = folder.Make(c.pool);
        chmod(folder.Make(complete, "pool_abc123").c_str(), 0400);
        const std::string log = ErrorAndLogOf([&] { PARAMETER_POOL_READ_WRITE_CHANGE pool(path); });
        EXPECT_THAT(log, HasSubstr(c.refused ? "pool error - corrupted parameter pool file\nDEBUG" : "WARN  : "))
            << c.what;
        const std::string recovery =
            "cat '" + folder.Path("pool_abc123") + "' > '" + path + "' && rm -f '" + folder.Path("pool_abc123") + "'";
        if (!c.refused) continue;
        EXPECT_THAT(log, HasSubstr(recovery));
        EXPECT_EQ(std::system(recovery.c_str()), 0);
        EXPECT_EQ(PARAMETER_POOL(path).Get<STRING>("n"), STRING("x")) << c.what;
    }
}

TEST(LeftOvers, ThatCanNotBeReadStopTheRunUnlessTheyAreShorter) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to become somebody else";
    const TEMPORARY_FOLDER folder;
    ASSERT_EQ(chmod(folder.Path("").c_str(), 0755), 0);
    ASSERT_EQ(chmod(folder.Make("k INT_32 1\n").c_str(), 0666), 0);
    for (const std::string left_over : {"k INT_32 1\nb BYT 1\n", "b BYT 1\n"}) {
        ASSERT_EQ(chmod(folder.Make(left_over, "pool_abc123").c_str(), 0400), 0);
        EXPECT_EQ(0, InProcess([&] {
                      if (setuid(65534) != 0) _exit(9);
                      const std::string log = ErrorAndLogOf([&] { PARAMETER_POOL pool(folder.Path()); });
                      const bool refused = log.find("can not be read: Permission denied: whether") < log.size();
                      _exit(refused == (left_over.size() > 11) ? 0 : 1);
                  }))
            << left_over;
        unlink(folder.Path("pool_abc123").c_str());
    }
}

TEST(LeftOvers, AreNamedOnceWhenAPoolOfTheFolderIsOpened) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    for (const char* name : {"pool_abc123", "pool_lock12", "pool_long_name"})
        chmod(folder.Make("", name).c_str(), 0400);
    chmod(folder.Make("", "pool_write1").c_str(), 0600);
    const int writer = open(folder.Path("pool_lock12").c_str(), O_RDONLY);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    const std::string log = ErrorAndLogOf([&] { PARAMETER_POOL pool(path); });
    EXPECT_THAT(log, HasSubstr("WARN  : global : " + folder.Path("pool_abc123") + " holds the content of a pool"));
    EXPECT_EQ(log.find("holds"), log.rfind("holds")) << log;
    EXPECT_THAT(log, HasSubstr(folder.Path("pool_write1") + " is an update that was interrupted before"));
    EXPECT_THAT(ErrorAndLogOf([&] { PARAMETER_POOL pool(path); }), testing::Not(HasSubstr("WARN")));
    close(writer);
    EXPECT_THAT(ErrorAndLogOf([&] { PARAMETER_POOL pool(path); }), HasSubstr("/pool_lock12 holds"));
}

}  // namespace
