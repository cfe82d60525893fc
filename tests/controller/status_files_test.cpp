#include "lib/baselib/controller/status_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

#include "tests/kit/temporary_folder.h"

namespace {

/// What an attacker, or a mishap, leaves under the name of the status file. "victim" must stay as it is.
struct OBSTACLE {
    const char* name;
    void (*place)();
};
const OBSTACLE kObstacles[] = {
    {"a long file", [] { Write("ERROR.x", std::string(10000, 'x')); }},
    {"a link to a file", [] { ASSERT_EQ(symlink("victim", "ERROR.x"), 0); }},
    {"a link to nowhere", [] { ASSERT_EQ(symlink("nowhere", "ERROR.x"), 0); }},
    {"a second name of a file", [] { ASSERT_EQ(link("victim", "ERROR.x"), 0); }},
    {"a pipe that nobody reads", [] { ASSERT_EQ(mkfifo("ERROR.x", 0600), 0); }},
};

TEST(WriteStatusFile, HoldsTheDigitWhateverStoodThere) {
    for (const OBSTACLE& obstacle : kObstacles) {
        SCOPED_TRACE(obstacle.name);
        const WORKING_FOLDER folder;
        Write("victim", "precious");
        obstacle.place();
        EXPECT_TRUE(WriteStatusFile("ERROR.x", '1'));
        EXPECT_EQ(Content("ERROR.x"), "1");
        EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status("ERROR.x")));
        EXPECT_EQ(Content("victim"), "precious");
        EXPECT_FALSE(std::filesystem::exists("nowhere"));
    }
}

TEST(WriteStatusFile, TellsWhenItCannot) {
    const WORKING_FOLDER folder;
    std::filesystem::create_directories("ERROR.x/full");
    EXPECT_FALSE(WriteStatusFile("ERROR.x", '1')) << "a folder of this name";
    EXPECT_FALSE(WriteStatusFile("nowhere/ERROR.x", '1'));
}

TEST(StatusFiles, AreRewrittenInPlaceAndRemovedByName) {
    const WORKING_FOLDER folder;
    Write("ERROR.x", "0");
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(stat("ERROR.x", &before), 0);
    ASSERT_TRUE(WriteStatusFile("ERROR.x", '1'));
    ASSERT_EQ(stat("ERROR.x", &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino) << "no moment without the file";
    Write("victim", "precious");
    ASSERT_EQ(symlink("victim", "OK.x"), 0);
    EXPECT_TRUE(RemoveStatusFile("OK.x"));
    EXPECT_TRUE(RemoveStatusFile("OK.x")) << "there is none";
    EXPECT_EQ(Content("victim"), "precious");
    EXPECT_FALSE(CanBeRead("OK.x"));
    ASSERT_EQ(mkfifo("STOP.x", 0600), 0);
    EXPECT_TRUE(CanBeRead("STOP.x")) << "without waiting for a writer";
}

TEST(CanBeRemoved, KnowsForeignFilesInStickyAndClosedFolders) {
    const WORKING_FOLDER folder;
    if (geteuid() != 0) GTEST_SKIP() << "only root makes foreign files";
    constexpr uid_t kNobody = 65534;
    const auto in_folder_of_mode = [](mode_t mode, const char* path) {
        if (chmod(".", mode) != 0 || setuid(kNobody) != 0) _exit(9);
        _exit(CanBeRemoved(path) ? 1 : 0);
    };
    Write("roots", "0");
    Write("mine", "0");
    ASSERT_EQ(chown("mine", kNobody, kNobody), 0);
    const std::tuple<mode_t, const char*, int> cases[] = {
        {01777, "roots", 0}, {01777, "mine", 1}, {0777, "roots", 1}, {0755, "mine", 0}, {01777, "none", 1}};
    for (const auto& [mode, path, can] : cases)
        EXPECT_EXIT(in_folder_of_mode(mode, path), testing::ExitedWithCode(can), "") << path << mode;
}

}  // namespace
