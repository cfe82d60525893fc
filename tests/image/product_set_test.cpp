#include "lib/baselib/image/product_set.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <string>
#include <thread>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/left_over_files.h"
#include "lib/baselib/image/whole_file.h"
#include "tests/kit/hexadecimal.h"
#include "tests/kit/in_process.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kHeader = "59a66a95 00000002 00000003 00000008 00000006 00000001 00000000 00000000";
constexpr const char* kOlder = "an older product, longer than the new one will be";

PRODUCT_REQUEST Small(const std::string& path) {
    return {"KEY", path, 2, 3, PIXEL_TYPE::U_INT_8};
}

std::string NewProduct() {
    return Bytes(kHeader) + "abcdef";
}

void WriteSmall(PRODUCT_FILE& file) {
    file.WriteRows(0, 1, "ab");
    file.WriteRows(1, 2, "cdef");
}

/// Names and contents of a folder.
std::map<std::string, std::string> Contents(const std::string& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::string& content = contents[entry.path().filename()];
        if (entry.is_symlink()) content = "-> " + read_symlink(entry.path()).string();
        if (!entry.is_symlink() && entry.is_regular_file()) content = Content(entry.path());
    }
    return contents;
}

TEST(ProductSet, ReplacesFilesAndKeepsLinksPermissionsAndNeighbours) {
    const TEMPORARY_FOLDER folder;
    std::filesystem::create_directory(folder.Path("other disk"));
    Write(folder.Path("older"), kOlder);
    Write(folder.Path("other disk/behind"), kOlder);
    std::filesystem::create_symlink("other disk/behind", folder.Path("link"));
    std::filesystem::create_symlink(folder.Path("other disk/coming"), folder.Path("dangling"));
    ASSERT_EQ(0, chmod(folder.Path("older").c_str(), 0640));
    const uid_t owner = geteuid() == 0 ? 65534 : geteuid();
    ASSERT_EQ(0, chown(folder.Path("older").c_str(), owner, getegid()));
    const std::string longest = std::string(255, 'n');
    const mode_t mask = umask(027);
    PRODUCT_SET products;
    for (const std::string& name : {std::string("new"), std::string("older"), std::string("link"),
                                    std::string("dangling"), longest, std::string("other disk/../short cut")}) {
        WriteSmall(products.Add(Small(folder.Path(name))));
    }
    WriteSmall(products.Add(Small("/dev/null")));
    umask(mask);
    products.ReserveRoom();
    EXPECT_EQ(kOlder, Content(folder.Path("older"))) << "nothing is replaced before all are complete";
    products.Place();
    products.Accept();
    const std::map<std::string, std::string> expected = {{"new", NewProduct()},
                                                         {"older", NewProduct()},
                                                         {"link", "-> other disk/behind"},
                                                         {"dangling", "-> " + folder.Path("other disk/coming")},
                                                         {longest, NewProduct()},
                                                         {"short cut", NewProduct()},
                                                         {"other disk", ""}};
    EXPECT_EQ(expected, Contents(folder.Path("")));
    const std::map<std::string, std::string> behind = {{"behind", NewProduct()}, {"coming", NewProduct()}};
    EXPECT_EQ(behind, Contents(folder.Path("other disk")));
    struct stat status {};
    ASSERT_EQ(0, stat(folder.Path("older").c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 0777U);
    EXPECT_EQ(owner, status.st_uid);
    ASSERT_EQ(0, stat(folder.Path("new").c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST(OutputPath, OfAPipeIsLeftAsItIs) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    const std::string path = "/proc/self/fd/" + std::to_string(ends[1]);  // a link to "pipe:[1234]", which is no path
    EXPECT_EQ(path, BehindLinks(path));
    close(ends[0]);
    close(ends[1]);
}

TEST(ProductSet, EveryEndWithoutAcceptLeavesTheFolderAsItWas) {
    const TEMPORARY_FOLDER folder;
    Write(folder.Path("older"), kOlder);
    const auto before = Contents(folder.Path(""));
    const auto run_to = [&](int step) {
        PRODUCT_SET products;
        PRODUCT_FILE* const files[] = {&products.Add(Small(folder.Path("older"))),
                                       &products.Add(Small(folder.Path("new")))};
        if (step > 0) products.ReserveRoom();
        if (step > 1) WriteSmall(*files[0]);
        if (step > 2) WriteSmall(*files[1]);
        if (step > 3) products.Place();
        EXPECT_EQ(step > 3, Content(folder.Path("new")) == NewProduct());
        if (step == 7) std::exit(7);
        if (step == 8) UndoUnfinishedFiles();
        if (step == 8) raise(SIGKILL);  // as from a handler: what it has done is all that is done
    };
    for (int step = 0; step < 5; ++step) {
        SCOPED_TRACE(step);
        run_to(step);
        EXPECT_EQ(before, Contents(folder.Path("")));
    }
    EXPECT_EQ(7, InProcess([&] { run_to(7); }));
    EXPECT_EQ(before, Contents(folder.Path("")));
    EXPECT_EQ(-SIGKILL, InProcess([&] { run_to(8); }));
    EXPECT_EQ(before, Contents(folder.Path("")));
}

TEST(ProductSet, WhatAKillLeavesIsRemovedByTheNextRunOfTheSameProductAlone) {
    const TEMPORARY_FOLDER folder;
    Write(folder.Path("a"), kOlder);
    const auto killed = [&](const char* name, bool placed) {
        EXPECT_EQ(-SIGKILL, InProcess([&] {
            PRODUCT_SET products;
            WriteSmall(products.Add(Small(folder.Path(name))));
            if (placed) products.Place();
            raise(SIGKILL);
        }));
    };
    PRODUCT_SET going_on;
    WriteSmall(going_on.Add(Small(folder.Path("a"))));
    killed("a", false);
    killed("b", false);
    EXPECT_EQ(4U, Contents(folder.Path("")).size());
    EXPECT_EQ(kOlder, Content(folder.Path("a")));
    EXPECT_THAT(LoggedBy([&] { PRODUCT_SET().Add(Small(folder.Path("a"))); }),
                HasSubstr("removed " + folder.Path(".velmora_")));
    EXPECT_EQ(3U, Contents(folder.Path("")).size()) << "a, the temporaries of the living run and of b";
    killed("a", true);
    EXPECT_EQ(NewProduct(), Content(folder.Path("a")));
    going_on.Place();
    PRODUCT_SET().Add(Small(folder.Path("a")));
    going_on.Accept();
    PRODUCT_SET().Add(Small(folder.Path("b")));
    EXPECT_EQ((std::map<std::string, std::string>{{"a", NewProduct()}}), Contents(folder.Path("")));
}

TEST(WholeFile, IsTheOlderOrTheNewOneAndLeavesNothingBesideIt) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("a.vrt");
    Write(path, kOlder);
    EXPECT_EQ(-SIGKILL, InProcess([&] {
        std::string temporary;
        MakeTemporary(FOLDER_AND_NAME(path), 0666, temporary);
        raise(SIGKILL);
    }));
    EXPECT_EQ(2U, Contents(folder.Path("")).size());
    EXPECT_EQ(0, ReplaceFile(path, "new"));
    EXPECT_EQ((std::map<std::string, std::string>{{"a.vrt", "new"}}), Contents(folder.Path("")));
    EXPECT_EQ(EBUSY, ReplaceFile(folder.Path("") + ".", "x"));
    EXPECT_EQ(ENOENT, ReplaceFile(folder.Path("none/a.vrt"), "x"));
    EXPECT_EQ(0, InProcess([&] {  // no room: the temporary goes, the older file stays
                  const rlimit limit{3, 3};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  std::signal(SIGXFSZ, SIG_IGN);
                  if (ReplaceFile(path, "longer") != EFBIG) _exit(1);
              }));
    EXPECT_EQ((std::map<std::string, std::string>{{"a.vrt", "new"}}), Contents(folder.Path("")));
}

TEST(ProductSet, TakesRowsThatLieApartInMemoryInAnyOrder) {
    constexpr long long kRows = 700;
    constexpr std::size_t kStride = 5;  // two bytes of a row, three of its neighbours
    std::string pixels;
    std::string expected;
    for (int i = 0; i < kRows * static_cast<int>(kStride); ++i) {
        pixels += static_cast<char>(i * 31 >> 3);
        if (i % static_cast<int>(kStride) < 2) expected += pixels.back();
    }
    const TEMPORARY_FOLDER folder;
    for (const long long split : {1LL, 255LL, 256LL, 257LL, 512LL, 699LL}) {
        PRODUCT_SET products;
        PRODUCT_FILE& file = products.Add({"KEY", folder.Path("a"), 2, kRows, PIXEL_TYPE::U_INT_8});
        file.WriteSpacedRows(split, kRows - split, pixels.data() + split * kStride, kStride);
        file.WriteSpacedRows(0, split, pixels.data(), kStride);
        products.Place();
        products.Accept();
        EXPECT_EQ(Content(folder.Path("a")).substr(32), expected) << split;
    }
}

TEST(ProductSet, RefusesWhatCanNotBeWrittenWithKeyAndReason) {
    const TEMPORARY_FOLDER folder;
    Write(folder.Path("file"), kOlder);
    ASSERT_EQ(0, mkfifo(folder.Path("nobody reads").c_str(), 0600));
    std::filesystem::create_symlink("round", folder.Path("round"));
    std::filesystem::create_symlink("no folder/x", folder.Path("lost"));
    const auto before = std::filesystem::directory_iterator(folder.Path(""));
    const auto check = [](const std::string& path, const char* reason) {
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(PRODUCT_SET().Add(Small(path)), ERROR_CAN_NOT_CREATE_FILE); }),
                    testing::ContainsRegex("key \"KEY\": the product " + path + " can not be written: .*" + reason));
    };
    check("", "No such file");
    for (const char* name : {"no/folder", "lost"}) check(folder.Path(name), "No such file");
    for (const char* name : {"", "missing/"}) check(folder.Path(name), "Is a directory");
    check(folder.Path("file/below"), "Not a directory");
    check(folder.Path("round"), "Too many levels");
    check(folder.Path("nobody reads"), "No such device or address");
    check(folder.Path(std::string(256, 'x')), "File name too long");
    EXPECT_EQ(4, std::distance(begin(before), end(before)));
    PRODUCT_SET full;
    PRODUCT_FILE& file = full.Add(Small("/dev/full"));
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(WriteSmall(file), ERROR_CAN_NOT_WRITE_FILE); }),
                HasSubstr("MEM_MGR: can not save header for /dev/full\n"));
}

TEST(ProductSet, APipeGetsRowsInOrderFromAnyThreads) {
    const TEMPORARY_FOLDER folder;
    const std::string fifo = folder.Path("fifo");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    const FILE_DESCRIPTOR reader(open(fifo.c_str(), O_RDONLY | O_NONBLOCK));
    {
        PRODUCT_SET products;
        PRODUCT_FILE& file = products.Add(Small(fifo));
        products.ReserveRoom();
        std::thread last([&] { file.WriteRows(1, 2, "cdef"); });
        file.WriteRows(0, 1, "ab");
        last.join();
        products.Place();
    }
    std::string got(100, '?');
    got.resize(ReadWhole(reader.Get(), got.data(), got.size()));
    EXPECT_EQ(NewProduct(), got);

    PRODUCT_SET products;
    PRODUCT_FILE& file = products.Add(Small(fifo));
    std::thread waiting([&] { EXPECT_THROW(file.WriteRows(1, 2, "cdef"), ERROR_CAN_NOT_WRITE_FILE); });
    const_cast<FILE_DESCRIPTOR&>(reader).Close();
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(file.WriteRows(0, 1, "ab"), ERROR_CAN_NOT_WRITE_FILE); }),
                HasSubstr("Broken pipe"));
    waiting.join();
}

TEST(ProductSet, OrdinaryUsersWriteInPlaceWhereTheFolderTakesNoNewFile) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to become somebody else";
    const TEMPORARY_FOLDER folder;
    ASSERT_EQ(0, chmod(folder.Path("").c_str(), 0755));
    for (const char* const name : {"writable", "protected"}) Write(folder.Path(name), kOlder);
    ASSERT_EQ(0, chmod(folder.Path("writable").c_str(), 0666));
    // 01777: takes a new file, but not in the place of a foreign one; 0777: does, but the new one is its maker's
    for (const mode_t mode : {0755, 01777, 0777}) {
        SCOPED_TRACE(mode);
        Write(folder.Path("writable"), kOlder);
        ASSERT_EQ(0, chmod(folder.Path("").c_str(), mode));
        const auto as_user = [&] {
            if (setuid(65534) != 0) _exit(9);
            const std::string log = LoggedBy([&] {
                PRODUCT_SET products;
                PRODUCT_FILE& file = products.Add(Small(folder.Path("writable")));
                products.ReserveRoom();
                if (Content(folder.Path("writable")) != kOlder) _exit(3);
                WriteSmall(file);
                products.Place();
                products.Accept();
            });
            const char* const told =
                mode == 0777 ? ": the older product's owner and perm" : ": its folder takes no other";
            if (log.find("WARN  : global : " + folder.Path("writable") + told) > 9) _exit(4);
            try {
                PRODUCT_SET().Add(Small(folder.Path("protected")));
                _exit(5);
            } catch (const ERROR_CAN_NOT_CREATE_FILE&) {
                _exit(0);
            }
        };
        EXPECT_EQ(0, InProcess(as_user));
        EXPECT_EQ(NewProduct(), Content(folder.Path("writable")));
        EXPECT_EQ(kOlder, Content(folder.Path("protected")));
    }
}

TEST(ProductSet, AFullDiskIsRefusedBeforeTheFirstByte) {
    const TEMPORARY_FOLDER folder;
    const auto on_small_disk = [&] {
        if (!MountSmallDisk(folder.Path(""), "size=1m")) _exit(77);
        Write(folder.Path("a"), kOlder);
        const auto before = Contents(folder.Path(""));
        const std::string log = LoggedBy([&] {
            PRODUCT_SET products;
            products.Add({"A", folder.Path("a"), 600000, 1, PIXEL_TYPE::U_INT_8});
            products.Add({"B", folder.Path("b"), 600000, 1, PIXEL_TYPE::U_INT_8});
            EXPECT_THROW(products.ReserveRoom(), ERROR_NO_DISK_SPACE);
        });
        EXPECT_EQ(before, Contents(folder.Path("")));
        EXPECT_THAT(log, HasSubstr("key \"B\": " + folder.Path("b") +
                                   ": no room for an image of 600000 x 1 pixels: "
                                   "600032 bytes are needed, "));
        EXPECT_THAT(log, testing::ContainsRegex("needed, 4[0-9]{5} are there: No space left on device"));
        _exit(testing::Test::HasFailure() ? 1 : 0);
    };
    const int status = InProcess(on_small_disk);
    if (status == 77) GTEST_SKIP() << "no right to mount a small disk";
    EXPECT_EQ(0, status);
}

TEST(ProductSet, AFileSizeLimitIsAnErrorAndNoSignal) {
    const TEMPORARY_FOLDER folder;
    EXPECT_EQ(0, InProcess([&] {
                  const rlimit limit{500000, 500000};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  PRODUCT_SET products;
                  products.Add({"A", folder.Path("a"), 600000, 1, PIXEL_TYPE::U_INT_8});
                  try {
                      products.ReserveRoom();
                  } catch (const ERROR_NO_DISK_SPACE&) {
                      return;
                  }
                  _exit(1);
              }));
    EXPECT_TRUE(Contents(folder.Path("")).empty());
}

}  // namespace
