#include "lib/baselib/image/mem_mgr.h"

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/system_error_text.h"
#include "lib/baselib/logging/logging.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

/// Reaches the cases that no caller can reach: a pixel type that was damaged in memory.
class MEM_MGR_TEST_PEER {
  public:
    static void DamagePixelType(MEM_MGR& image) { image.held_.pixel_type = static_cast<PIXEL_TYPE>(13); }
};

namespace {

using testing::HasSubstr;

constexpr long long kMost = std::numeric_limits<long long>::max();

TEST(MemMgr, AnEmptyImageHasNothingAndItsDestructionLogsNothing) {
    const std::string log = LoggedBy([] {
        MEM_MGR image;
        EXPECT_EQ("others", image.DataType().Text());
        EXPECT_EQ(0, image.DataType().Size());
        EXPECT_EQ(STORAGE_STATE::EMPTY, image.Storage());
        EXPECT_EQ(0, image.Columns() + image.Rows() + image.DataSize());
        image.Flush(MS_SYNC);
        const MEM_MGR copy(image);
        EXPECT_EQ(STORAGE_STATE::EMPTY, copy.Storage());
    });
    EXPECT_EQ("", log);
}

TEST(DataType, HasTheSizeThatItsNameSays) {
    const std::pair<const char*, int> sizes[] = {
        {"int_8", 1},   {"u_int_16", 2}, {"u_int_32", 4},   {"int_64", 8},    {"u_int_64", 8},    {"flt_30", 16},
        {"c_int_8", 2}, {"c_int_32", 8}, {"c_u_int_16", 4}, {"c_int_64", 16}, {"c_u_int_64", 16}, {"c_flt_30", 32}};
    for (const auto& [name, bytes] : sizes) EXPECT_EQ(bytes, BASIC::TYPES::DATA_TYPE(name).Size()) << name;
}

TEST(MemMgr, RefusesSizesThatNoMemoryHolds) {
    MEM_MGR image;
    EXPECT_THROW(image.Allocate(0, 0, kMost - 1, kMost - 1, PIXEL_TYPE::U_INT_8), std::bad_array_new_length);
    EXPECT_THROW(image.Allocate(-kMost, 0, kMost, 0, PIXEL_TYPE::U_INT_8), ERROR_ARGUMENT);
    EXPECT_THROW(image.Allocate(0, 0, -2, 4, PIXEL_TYPE::U_INT_8), ERROR_ARGUMENT);
    EXPECT_EQ(STORAGE_STATE::EMPTY, image.Storage());
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they end the program instead
    EXPECT_THROW(image.Allocate(0, 0, 1LL << 50, 0, PIXEL_TYPE::FLT_15), ERROR_NO_MEMORY);
#endif
}

TEST(MemMgr, RowTableHasTheImagesOwnOrigin) {
    MEM_MGR image;
    image.Allocate(-2, 5, 1, 7, PIXEL_TYPE::INT_16);
    ASSERT_EQ(4, image.Columns());
    ASSERT_EQ(3, image.Rows());
    std::int16_t** const table = image.GetNumRecMatrix<std::int16_t>();
    std::int16_t number = 0;
    for (int row = 5; row <= 7; ++row) {
        for (int column = -2; column <= 1; ++column) {
            EXPECT_EQ(0, table[row][column]) << "zeroed";
            table[row][column] = number++;
        }
    }
    for (std::int16_t i = 0; i < 12; ++i) {
        std::int16_t stored = 0;
        std::memcpy(&stored, image.Data() + 2 * i, 2);
        EXPECT_EQ(i, stored);
    }
    EXPECT_EQ(table, image.GetNumRecMatrix<std::int16_t>()) << "built once";
    EXPECT_EQ(reinterpret_cast<std::byte*>(&table[6][-1]), image.PixelAddress(-1, 6));
    image.Allocate(1, 1, 5, 0, PIXEL_TYPE::INT_32);
    EXPECT_EQ(0, image.DataSize());
    EXPECT_NE(nullptr, image.GetNumRecMatrix<std::int32_t>());
}

TEST(MemMgr, RefusesPixelTypesUnknownOrNotItsOwn) {
    MEM_MGR image;
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.GetNumRecMatrix<float>(), ERROR_MEMORY); }),
                HasSubstr("MEM_MGR: no memory allocated for GetNumRecMatrix()"));
    for (const unsigned number : {0U, 13U}) {
        const auto type = static_cast<PIXEL_TYPE>(number);
        EXPECT_EQ("ALARM : global : MEM_MGR: unknown pixeltype\n",
                  LoggedBy([&] { EXPECT_THROW(image.Allocate(0, 0, 1, 1, type), ERROR_NOT_SUPPORTED_PIXEL_TYPE); }));
    }
    image.Allocate(0, 0, 3, 3, PIXEL_TYPE::FLT_6);
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.GetNumRecMatrix<double>(), ERROR_NOT_SUPPORTED_PIXEL_TYPE); }),
                HasSubstr("\"flt_6\", asked for as \"flt_15\""));
}

TEST(MemMgrDeathTest, ADamagedPixelTypeEndsTheProgramInTheDestructor) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto damage_and_destroy = [] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        Log().SetScreenThreshold(1);
        MEM_MGR image;
        image.Allocate(0, 0, 1, 1, PIXEL_TYPE::FLT_6);
        MEM_MGR_TEST_PEER::DamagePixelType(image);
        try {
            image.GetNumRecMatrix<float>();
        } catch (const ERROR_NOT_SUPPORTED_PIXEL_TYPE&) {
        }
    };
    EXPECT_DEATH(damage_and_destroy(), "unknow pixeltype in memory(.|\n)*delete image memory(.|\n)*unknown pixeltype");
}

TEST(MemMgr, CopyIsDeepAndTakesTheColourMap) {
    auto* const storage = new unsigned char[6]{1, 2, 3, 4, 5, 6};
    MEM_MGR source;
    source.Allocate(0, 0, 1, 0, PIXEL_TYPE::U_INT_8);
    source.SetColourMap({storage, storage + 2, storage + 4, 2, COLOUR_MAP_OWNER::ARRAY_DELETE});
    source.GetNumRecMatrix<std::uint8_t>()[0][1] = 9;
    MEM_MGR copy;
    copy.Allocate(0, 0, 99, 99, PIXEL_TYPE::FLT_15);
    copy = source;
    source.Free();
    EXPECT_EQ(9, copy.GetNumRecMatrix<std::uint8_t>()[0][1]);
    const COLOUR_MAP& map = copy.ColourMap();
    ASSERT_EQ(2, map.entries);
    EXPECT_EQ(2, map.red[1]);
    EXPECT_EQ(3, map.green[0]);
    EXPECT_EQ(6, map.blue[1]);
    copy = *&copy;
    MEM_MGR moved(std::move(copy));
    EXPECT_EQ(9, moved.GetNumRecMatrix<std::uint8_t>()[0][1]);
    auto* const from_malloc = static_cast<unsigned char*>(std::malloc(3));
    moved.SetColourMap({from_malloc, from_malloc + 1, from_malloc + 2, 1, COLOUR_MAP_OWNER::SYSTEM_FREE});
}

TEST(MemMgr, TellsOfAdviceWithoutGivingAny) {
    MEM_MGR image;
    image.Allocate(0, 0, 10 * getpagesize(), 0, PIXEL_TYPE::U_INT_8);
    EXPECT_EQ(LoggedBy([&] { image.Advise(3); }),
              "DEBUG : global : MEM_MGR: making 3 madvise calls\nDEBUG : global : MEM_MGR: madvise completed\n");
    for (const long long pages : {0LL, -1LL, kMost}) EXPECT_THROW(image.Advise(pages), ERROR_ARGUMENT);
    image.Advise(1);
}

TEST(MemMgr, FlushReportsEveryErrorOfMsync) {
    const TEMPORARY_FOLDER folder;
    MEM_MGR image;
    image.Allocate(0, 0, 4999, 2, PIXEL_TYPE::U_INT_8);
    image.SaveSunRasterFile(folder.Path("a"), 0666);
    image.MapUInt8(folder.Path("a"), ACCESS_MODE::READ_WRITE);
    image.Flush(MS_SYNC);
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.Flush(MS_SYNC | MS_ASYNC), ERROR_CAN_NOT_MSYNC); }),
                testing::AllOf(HasSubstr("ALARM : global : MEM_MGR: msync error ..\n"
                                         "ALARM : global : EINVAL: addr is not a multiple of the page size or wrong "
                                         "flag ..\n"),
                               HasSubstr("ALARM : global : " + folder.Path("a") + ": Invalid argument\n")));
    EXPECT_THAT(BusErrorText(image.Data() + 14999),
                testing::StartsWith(folder.Path("a") + ": the file can not be read"));
    EXPECT_EQ(nullptr, BusErrorText(image.Data() + 15000));
    const auto page = static_cast<std::size_t>(getpagesize());
    std::byte* const start = image.Data() - image.HeaderSize();
    ASSERT_EQ(0, munmap(start, page));
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.Flush(MS_SYNC), ERROR_CAN_NOT_MSYNC); }),
                HasSubstr("ENOMEM: Addresses"));
    ASSERT_EQ(start,
              mmap(start, page, PROT_READ, MAP_FIXED | MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));  // no hole for others
    EXPECT_STREQ("EIO: An I/O error occurred while reading from or writing to the file system ..", MsyncErrorText(EIO));
    EXPECT_STREQ("unhandled msync() error", MsyncErrorText(ENOSPC));
}

}  // namespace
