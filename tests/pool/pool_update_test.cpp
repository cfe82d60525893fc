// Updating: which lines change, who may update, and what a failure or another writer leaves behind.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "tests/pool/pool_files.h"

namespace {

using testing::HasSubstr;

/// Writes the value 5 as the key and returns the pool's content.
std::string Updated(const std::string& content, const std::string& key = "k", std::vector<std::string> comments = {}) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make(content);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    pool.Change(key, 5, comments);
    pool.Update();
    const std::string once = POOL_FOLDER::Content(path);
    pool.Change(key, 5, comments);
    pool.Update();
    EXPECT_EQ(POOL_FOLDER::Content(path), once) << content;
    return once;
}

TEST(PoolUpdate, ChangesTheEntrysOwnLinesOnly) {
    struct CASE {
        const char* name;
        const char* before;
        const char* after;
    };
    const CASE cases[] = {
        {"empty pool", "", "k INT_32 5\n\n"},
        {"comments and blank lines", "# a\n\n#b\nk INT_32 1\n\n\n# c\n", "# a\n\n#b\nk INT_32 5\n\n\n# c\n"},
        {"no empty line behind", "k INT_32 1\nb BOL TRUE\n", "k INT_32 5\n\nb BOL TRUE\n"},
        {"first of two", "k INT_32 1\n\nk INT_32 2\n", "k INT_32 5\n\nk INT_32 2\n"},
        {"other type", "a STR \"x\"\nk STR \"a b\" rest\nb BYT 1\n", "a STR \"x\"\nk INT_32 5\n\nb BYT 1\n"},
        {"block at any column", "k STR_V 0 3\n{\n\"k INT_32 1\"\n \"}\"\n\"b\"\n}\nb INT_8 1\n",
         "k INT_32 5\n\nb INT_8 1\n"},
        {"matrix", "k BYT_M 2 1\n  {\n{\n1\n}\n {\n2\n }\n}\n\nz BYT 1\n", "k INT_32 5\n\nz BYT 1\n"},
        {"elements that look like the key", "v STR_V 0 1\n{\nk INT_32\n}\nk BYT 1\n",
         "v STR_V 0 1\n{\nk INT_32 5\n\n}\nk BYT 1\n"},  // a line with a tag as second word is never an element
        {"block never closed", "k BYT_V 0 9\n{\n1\n2\nb BYT 1\n", "k INT_32 5\n\nb BYT 1\n"},
        {"block cut by the end", "k BYT_V 0 9\n{\n1\n", "k INT_32 5\n\n"},
        {"indented lines are nobody's", "k INT_32 1\n indented\n\nb BYT 1\n", "k INT_32 5\n\n indented\n\nb BYT 1\n"},
        {"appended", "b BYT 1\n\n", "b BYT 1\n\nk INT_32 5\n\n"},
        {"appended to an open line", "b BYT 1", "b BYT 1\nk INT_32 5\n\n"},
        {"other line ends", "a BYT 1\r\n# c\r\rk BYT 1\r\n\r\nb BYT 1\r\n",
         "a BYT 1\r\n# c\r\rk INT_32 5\n\nb BYT 1\r\n"},
    };
    for (const CASE& c : cases) EXPECT_EQ(Updated(c.before), c.after) << c.name;
    const std::string binary("# \0\xff\n\x01 b\nb BYT 1\n", 17);
    EXPECT_EQ(Updated(binary), binary + "k INT_32 5\n\n");
    const std::string long_line = "#" + std::string(5000, 'x') + "\n";
    EXPECT_EQ(Updated(long_line), long_line + "k INT_32 5\n\n");
    EXPECT_EQ(Updated("a BYT 1\nk BYT 1\n", "k", {" made", " twice"}), "a BYT 1\n# made\n# twice\nk INT_32 5\n\n");
    EXPECT_EQ(Updated(std::string(101, 'k') + " BYT 1\n", std::string(100, 'k')),
              std::string(100, 'k') + " INT_32 5\n\n");
}

TEST(PoolUpdate, WritesTheDocumentedLayout) {
    const POOL_FOLDER folder;
    PARAMETER_POOL_READ_WRITE_CHANGE pool(folder.Path());
    ARRAY<COMPLEX<float>> vector(2, 1);
    vector[2] = {0.1F, -2.0F};
    MATRIX<short> matrix(1, 2);
    matrix[0][1] = -7;
    pool.Change("late", 1.0);
    pool.Change("pair", TUPLE<STRING>{"a b", ""});
    pool.Change("vector", vector);
    pool.Change("matrix", matrix);
    pool.Change("late", 2.0);  // the last value counts, at the last place
    pool.Update();
    EXPECT_EQ(POOL_FOLDER::Content(folder.Path()),
              "pair STR_STR \"a b\" \"\"\n\n"
              "vector CPL_6_V 2 1\n{\n    0.100000001 -2\n}\n\n"
              "matrix INT_16_M 1 2\n{\n    {\n        0\n        -7\n    }\n}\n\n"
              "late FLT_15 2\n\n");
}

TEST(PoolUpdate, KeepsTheFilesIdentityAndLeavesNothingBehind) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    ASSERT_EQ(chmod(path.c_str(), 0642), 0);
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    std::filesystem::create_symlink("test.pool", folder.Path("link.pool"));
    PARAMETER_POOL_READ_WRITE_CHANGE pool(folder.Path("link.pool"));
    pool.Change("k", 2);
    EXPECT_THAT(LogOf([&] { pool.Update(); }),
                testing::MatchesRegex("DEBUG : global : copy .*/pool_...... to .*/link.pool\n"));
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_mode, after.st_mode);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path(".")), {}), 2);
}

TEST(PoolUpdate, TwoObjectsOnOneFileBothSurvive) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\n\n");
    PARAMETER_POOL_READ_WRITE_CHANGE first(path);
    PARAMETER_POOL_READ_WRITE_CHANGE second(
        folder.Path("../" + std::filesystem::path(folder.Path(".")).parent_path().filename().string() + "/test.pool"));
    second.Change("c", 3);
    first.Change("b", 2);
    first.Update();
    second.Update();
    first.Change("a", 9);
    first.Update();
    EXPECT_EQ(POOL_FOLDER::Content(path), "a INT_32 9\n\nb INT_32 2\n\nc INT_32 3\n\n");
}

TEST(PoolUpdate, ReachesTheFileThatReplacedTheOpenedOne) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    pool.Change("b", 2);
    std::filesystem::rename(folder.Make("k INT_32 7\n", "edited"), path);
    pool.Update();
    EXPECT_EQ(POOL_FOLDER::Content(path), "k INT_32 7\nb INT_32 2\n\n");
    std::filesystem::remove(path);
    pool.Change("b", 3);
    EXPECT_THAT(LogOf([&] { pool.Update(); }), HasSubstr("No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(path));
}

/// Runs the check in a child, there as an ordinary user that owns the folder. @return whether it succeeded
bool AsOrdinaryUser(const POOL_FOLDER& folder, const std::function<bool()>& check) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0) {
            for (const auto& entry : std::filesystem::directory_iterator(folder.Path("."))) {
                if (chown(entry.path().c_str(), kNobody, kNobody) != 0) _exit(2);
            }
            if (chown(folder.Path(".").c_str(), kNobody, kNobody) != 0 || setuid(kNobody) != 0) _exit(2);
        }
        _exit(check() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The update's log contains all of these texts and the pool still has its one entry.
bool UpdateFails(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const std::string& path,
                 const std::vector<const char*>& texts) {
    const std::string log = LogOf([&] { pool.Update(); });
    bool complete = POOL_FOLDER::Content(path) == "k INT_32 1\n";
    for (const char* text : texts) {
        complete = complete && log.find(text) != std::string::npos;
        if (log.find(text) == std::string::npos) std::fprintf(stderr, "%s\nis not in\n%s\n", text, log.c_str());
    }
    return complete;
}

const std::vector<const char*> kNotChanged = {"pool error - corrupted parameter pool file\n",
                                              "can not update parameter pool: ", "the corrupted parameter pool is:",
                                              "the original parameter pool is NOT CHANGED !!"};

TEST(PoolUpdate, NeedsPermission) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    EXPECT_TRUE(AsOrdinaryUser(folder, [&] {
        PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
        pool.Change("k", 2);
        chmod(path.c_str(), 0444);
        const bool refused = UpdateFails(pool, path,
                                         {"pool error - parameter pool update(): insufficient file permission\n",
                                          "no permission to change pool file: "});
        const std::string opening = LogOf([&] { PARAMETER_POOL_READ_WRITE_CHANGE again(path); });
        PARAMETER_POOL reader(path);  // reading is allowed
        return refused && opening.find("can not open pool file for update " + path) != std::string::npos &&
               reader.Get<int>("k") == 1;
    }));
}

TEST(PoolUpdate, AnUnwritableFolderOrFullDiskLosesNothing) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    EXPECT_TRUE(AsOrdinaryUser(folder, [&] {
        chmod(folder.Path(".").c_str(), 0555);
        PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
        pool.Change("k", 2);
        std::vector<const char*> texts = kNotChanged;
        texts.push_back("Permission denied");
        const bool failed = UpdateFails(pool, path, texts);
        chmod(folder.Path(".").c_str(), 0755);
        pool.Update();  // the entry still waits
        return failed && pool.Get<int>("k") == 2;
    }));
    folder.Make("k INT_32 1\n");
    EXPECT_TRUE(AsOrdinaryUser(folder, [&] {  // files of at most 5 bytes stand for the full disk
        std::signal(SIGXFSZ, SIG_IGN);
        PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
        pool.Change("k", 2);
        const rlimit limit{5, RLIM_INFINITY};
        testing::internal::CaptureStdout();  // the capture's own file must be larger
        testing::internal::GetCapturedStdout();
        setrlimit(RLIMIT_FSIZE, &limit);
        bool corrupted = false;
        try {
            pool.Update();
        } catch (const CORRUPTED_PARAMETER_POOL&) {
            corrupted = true;
        }
        return corrupted && POOL_FOLDER::Content(path) == "k INT_32 1\n";
    }));
}

TEST(LeftOvers, AreNamedOnceWhenAPoolOfTheFolderIsOpened) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("k INT_32 1\n");
    for (const char* name : {"pool_abc123", "pool_locked", "pool_open12", "pool_long_name", "pool_write1"})
        folder.Make("", name);
    std::filesystem::rename(folder.Path("pool_locked"), folder.Path("pool_lock12"));
    for (const char* name : {"pool_abc123", "pool_lock12", "pool_long_name"}) chmod(folder.Path(name).c_str(), 0400);
    mkdir(folder.Path("pool_folder").c_str(), 0400);
    const int writer = open(folder.Path("pool_lock12").c_str(), O_RDONLY);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    const std::string log = LogOf([&] { PARAMETER_POOL pool(path); });
    EXPECT_THAT(log, HasSubstr("WARN  : global : " + folder.Path("pool_abc123") + " holds the content of a pool"));
    EXPECT_EQ(log.find("holds"), log.rfind("holds")) << log;
    EXPECT_THAT(LogOf([&] { PARAMETER_POOL pool(path); }), testing::Not(HasSubstr("WARN")));
    close(writer);
    EXPECT_THAT(LogOf([&] { PARAMETER_POOL pool(path); }), HasSubstr("/pool_lock12 holds"));
}

}  // namespace
