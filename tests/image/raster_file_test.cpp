#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/product_set.h"
#include "lib/baselib/image/system_error_text.h"
#include "tests/kit/hexadecimal.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// Of an image of columns -2 .. 2 and rows 7 .. 9.
template <class T>
bool RowsLeadToPixels(MEM_MGR& image) {
    const auto place = [&image](int column, int row) {
        return reinterpret_cast<std::byte*>(&image.GetNumRecMatrix<T>()[row][column]);
    };
    return place(-2, 7) == image.Data() && place(1, 8) == image.PixelAddress(1, 8) &&
           place(2, 9) + sizeof(T) == image.Data() + 15 * sizeof(T);
}

struct PIXEL_CASE {
    PIXEL_TYPE pixel_type;
    const char* data_type;
    int bytes;
    const char* depth;  ///< header words in hexadecimal, as the format's table gives them
    const char* type_word;
    bool (*rows_lead_to_pixels)(MEM_MGR&);
};

constexpr PIXEL_CASE kPixelCases[] = {
    {PIXEL_TYPE::U_INT_8, "u_int_8", 1, "00000008", "00000001", RowsLeadToPixels<std::uint8_t>},
    {PIXEL_TYPE::INT_16, "int_16", 2, "00000010", "00000001", RowsLeadToPixels<std::int16_t>},
    {PIXEL_TYPE::INT_32, "int_32", 4, "00000020", "00000001", RowsLeadToPixels<std::int32_t>},
    {PIXEL_TYPE::FLT_2, "flt_2", 2, "00000010", "0000005d", RowsLeadToPixels<FLT_2_BITS>},
    {PIXEL_TYPE::FLT_6, "flt_6", 4, "00000020", "00000063", RowsLeadToPixels<float>},
    {PIXEL_TYPE::FLT_15, "flt_15", 8, "00000040", "00000062", RowsLeadToPixels<double>},
    {PIXEL_TYPE::C_U_INT_8, "c_u_int_8", 2, "00000010", "0000005e", RowsLeadToPixels<COMPLEX<std::uint8_t>>},
    {PIXEL_TYPE::C_INT_16, "c_int_16", 4, "00000020", "00000061", RowsLeadToPixels<COMPLEX<std::int16_t>>},
    {PIXEL_TYPE::C_FLT_2, "c_flt_2", 4, "00000020", "0000005c", RowsLeadToPixels<COMPLEX<FLT_2_BITS>>},
    {PIXEL_TYPE::C_FLT_6, "c_flt_6", 8, "00000040", "00000060", RowsLeadToPixels<COMPLEX<float>>},
    {PIXEL_TYPE::C_FLT_15, "c_flt_15", 16, "00000080", "0000005f", RowsLeadToPixels<COMPLEX<double>>},
    {PIXEL_TYPE::RGB, "rgb", 3, "00000018", "00000003", RowsLeadToPixels<RGB_PIXEL>}};

/// 5 x 3: an odd width, which the standard layout would pad for 1- and 3-byte pixels.
std::string ExpectedFile(const PIXEL_CASE& c, const std::string& pixels) {
    char length[9];
    std::snprintf(length, sizeof length, "%08zx", pixels.size());
    return Bytes("59a66a95 00000005 00000003 " + std::string(c.depth) + length + c.type_word + "00000000 00000000") +
           pixels;
}

TEST(RasterFile, EveryPixelTypeIsSavedMappedAndCopiedByteForByte) {
    const TEMPORARY_FOLDER folder;
    for (const PIXEL_CASE& c : kPixelCases) {
        SCOPED_TRACE(c.data_type);
        MEM_MGR image;
        image.Allocate(-2, 7, 2, 9, c.pixel_type);
        ASSERT_EQ(15, image.DataSize());
        ASSERT_EQ(c.bytes, image.BytesPerPixel());
        EXPECT_TRUE(c.rows_lead_to_pixels(image));
        std::string pixels;
        for (int i = 0; i < 15 * c.bytes; ++i) pixels += static_cast<char>(i * 37 + 11);
        std::memcpy(image.Data(), pixels.data(), pixels.size());

        const std::string path = folder.Path(c.data_type);
        image.SaveSunRasterFile(path, 0666);
        ASSERT_EQ(ExpectedFile(c, pixels), Content(path));

        MEM_MGR mapped;
        mapped.MapFile(path, ACCESS_MODE::READ_ONLY, c.pixel_type);
        EXPECT_EQ(c.data_type, mapped.DataType().Text());
        EXPECT_EQ(c.bytes, mapped.DataType().Size());
        EXPECT_EQ(4, mapped.LastColumn());
        EXPECT_EQ(2, mapped.LastRow());
        const MEM_MGR copy(mapped);
        mapped.Free();
        EXPECT_EQ(STORAGE_STATE::IN_MEMORY, copy.Storage());
        EXPECT_EQ(pixels, std::string(reinterpret_cast<const char*>(copy.Data()), pixels.size()));
    }
}

TEST(RasterFile, TheWorkedExampleOfTheDocumentIsWhatTheProgramWritesAndReads) {
    std::string example;
    std::ifstream document(std::string(VELMORA_SOURCE_DIR) + "/docs/raster_files.md");
    for (std::string line; std::getline(document, line);) {
        if (line.rfind("59a66a95 ", 0) == 0) example = line.substr(0, line.find("  "));
    }
    example.erase(std::remove(example.begin(), example.end(), '|'), example.end());
    ASSERT_NE("", example);
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("example.ras");
    Write(path, Bytes(example));
    MEM_MGR image;
    image.MapInt16(path, ACCESS_MODE::READ_ONLY);
    ASSERT_EQ(2, image.Columns());
    EXPECT_EQ(1, image.GetNumRecMatrix<std::int16_t>()[0][0]);
    EXPECT_EQ(-2, image.GetNumRecMatrix<std::int16_t>()[0][1]);
    image.SaveSunRasterFile(folder.Path("again.ras"), 0666);
    EXPECT_EQ(Bytes(example), Content(folder.Path("again.ras")));
}

TEST(RasterFile, AnImageWithoutPixelsIsABareHeader) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("empty");
    const std::string expected = Bytes("59a66a95 00000000 00000003 00000040 00000000 00000062 00000000 00000000");
    MEM_MGR image;
    image.Allocate(0, 0, -1, 2, PIXEL_TYPE::FLT_15);
    image.SaveSunRasterFile(path, 0666);
    EXPECT_EQ(expected, Content(path));
    image.MapFlt15(path, ACCESS_MODE::READ_ONLY);
    EXPECT_EQ(0, image.Columns());
    EXPECT_EQ(3, image.Rows());
    const auto map = [&] { image.MapFileChecked(path, ACCESS_MODE::READ_ONLY, PIXEL_TYPE::FLT_15); };
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(map(), ERROR_IMAGE); }), HasSubstr(path + ": the image has no pixels"));
}

TEST(RasterFile, AColourMapLiesBetweenHeaderAndPixels) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("colours");
    // 7 bytes: three parts of 2, one byte left over.
    Write(path, Bytes("59a66a95 00000002 00000001 00000008 00000002 00000001 00000001 00000007"
                      "0102 0304 0506 07 aabb"));
    MEM_MGR image;
    image.MapUInt8(path, ACCESS_MODE::READ_ONLY);
    EXPECT_EQ(39, image.HeaderSize());
    EXPECT_EQ(0xbb, image.GetNumRecMatrix<std::uint8_t>()[0][1]);
    const COLOUR_MAP map = image.ColourMap();
    EXPECT_EQ(2, map.entries);
    EXPECT_EQ(3, map.green[0]);
    EXPECT_EQ(6, map.blue[1]);
    const MEM_MGR copy(image);
    image.Free();
    EXPECT_EQ(COLOUR_MAP_OWNER::ARRAY_DELETE, copy.ColourMap().owner);
    EXPECT_EQ(4, copy.ColourMap().green[1]);
    // Wider pixels at an odd byte: mapped and copied, but no pointer to them is given out.
    Write(path, Bytes("59a66a95 00000001 00000001 00000010 00000002 00000001 00000001 00000003 010203 aabb"));
    image.MapInt16(path, ACCESS_MODE::READ_ONLY);
    EXPECT_THROW(image.GetNumRecMatrix<std::int16_t>(), ERROR_IMAGE);
    MEM_MGR aligned(image);
    EXPECT_EQ(static_cast<std::int16_t>(0xbbaa), aligned.GetNumRecMatrix<std::int16_t>()[0][0]);
}

TEST(RasterFile, OnlyWidthHeightAndMapLengthDecideWhetherAFileIsMapped) {
    struct CASE {
        const char* name;
        const char* file;
        const char* log;  ///< of the checked mapping; nullptr: too short for any
    };
    const char* const kPixels = "00000000 0000";
    const CASE cases[] = {
        {"wrong magic", "12345678 00000001 00000003 00000010 00000006 00000001 00000000 00000000", "magic 0x12345678"},
        {"wrong length", "59a66a95 00000001 00000003 00000010 00000007 00000001 00000000 00000000", "length 7"},
        {"wrong depth", "59a66a95 00000001 00000003 00000020 00000006 00000001 00000000 00000000", "depth 32"},
        {"wrong type", "59a66a95 00000001 00000003 00000010 00000006 ffffffff 00000000 00000000", ""},
        {"2^64 bytes", "59a66a95 ffffffff ffffffff 00000010 00000006 00000001 00000000 00000000", nullptr},
        {"a row too many", "59a66a95 00000001 00000004 00000010 00000006 00000001 00000000 00000000", nullptr},
        {"a byte too many", "59a66a95 00000001 00000003 00000010 00000006 00000001 00000001 00000001", nullptr},
        {"map of 4 GiB", "59a66a95 00000001 00000003 00000010 00000006 00000001 00000001 ffffffff", nullptr}};
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("file");
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.name);
        Write(path, Bytes(std::string(c.file) + kPixels));
        MEM_MGR image;
        const auto map = [&] { image.MapFile(path, ACCESS_MODE::READ_WRITE, PIXEL_TYPE::INT_16); };
        const auto map_checked = [&] { image.MapFileChecked(path, ACCESS_MODE::READ_ONLY, PIXEL_TYPE::INT_16); };
        if (c.log != nullptr) {
            EXPECT_THAT(LoggedBy(map), Not(HasSubstr(path)));
            EXPECT_EQ(3, image.Rows());
            EXPECT_THAT(LoggedBy(map_checked), HasSubstr(c.log));
        } else {
            EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(map(), ERROR_IMAGE); }), HasSubstr(path + ": too short"));
            EXPECT_THROW(map_checked(), ERROR_IMAGE);
            EXPECT_EQ(STORAGE_STATE::EMPTY, image.Storage());
        }
    }
}

TEST(RasterFile, MappingFailures) {
    const TEMPORARY_FOLDER folder;
    const std::string missing = folder.Path("missing");
    MEM_MGR image;
    EXPECT_EQ(
        "DEBUG : global : map file with access mode 2\nDEBUG : global : map file with prot flag 3\n"
        "ALARM : global : MEM_MGR: can not open: " +
            missing +
            "\n"
            "ALARM : global : ENOENT: see: man page of open\n"
            "ALARM : global : " +
            missing + ": No such file or directory\n",
        LoggedBy([&] { EXPECT_THROW(image.MapRgb(missing, ACCESS_MODE::READ_WRITE), ERROR_CAN_NOT_OPEN_FILE); }));
    ASSERT_EQ(0, mkfifo(folder.Path("fifo").c_str(), 0600));
    Write(folder.Path("short"), std::string(31, 'x'));
    Write(folder.Path("file"), Bytes("59a66a95 00000000 00000000 00000010 00000000 00000001 00000000 00000000"));
    const std::pair<std::string, ACCESS_MODE> unreadable[] = {{folder.Path("short"), ACCESS_MODE::READ_ONLY},
                                                              {folder.Path("fifo"), ACCESS_MODE::READ_ONLY},
                                                              {folder.Path(""), ACCESS_MODE::READ_ONLY},
                                                              {folder.Path("file"), ACCESS_MODE::WRITE_ONLY}};
    for (const auto& [path, mode] : unreadable) {
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.MapUInt8(path, mode), ERROR_CAN_NOT_READ_FILE); }),
                    HasSubstr("MEM_MGR: can not read header from: " + path + "\n"));
    }
}

TEST(RasterFile, OpenErrorsHaveTheirLines) {
    EXPECT_STREQ("EACCES: see: man page of open", OpenErrorText(EACCES));
    EXPECT_STREQ("ENOSPC: see: man page of open", OpenErrorText(ENOSPC));
    EXPECT_STREQ("open unknown system error code", OpenErrorText(EROFS));
}

TEST(RasterFile, OutputsReplaceFilesAndFollowLinks) {
    const TEMPORARY_FOLDER folder;
    const mode_t mask = umask(0027);
    MEM_MGR image;
    image.Allocate(0, 0, 1, 1, PIXEL_TYPE::INT_16);
    const std::string target = folder.Path("target");
    ASSERT_EQ(0, symlink("target", folder.Path("link").c_str()));
    for (int pass = 0; pass < 2; ++pass) {
        image.SaveSunRasterFile(folder.Path("link"), 0666);
        EXPECT_EQ(40U, Content(target).size());
        EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
        struct stat status {};
        ASSERT_EQ(0, stat(target.c_str(), &status));
        EXPECT_EQ(0640U, status.st_mode & 0777U);
        Write(target, std::string(5000, 'x'));
    }
    umask(mask);
}

TEST(RasterFile, OutputFailuresNameThePathAndDamageNothing) {
    const TEMPORARY_FOLDER folder;
    const std::string plain = folder.Path("plain");
    Write(plain, "user's own");
    ASSERT_EQ(0, mkfifo(folder.Path("fifo").c_str(), 0600));
    MEM_MGR image;
    image.Allocate(0, 0, 9, 9, PIXEL_TYPE::U_INT_8);
    for (const std::string& path : {plain + "/below", folder.Path("no/folder"), folder.Path(""), folder.Path("fifo")}) {
        SCOPED_TRACE(path);
        const std::string log =
            LoggedBy([&] { EXPECT_THROW(image.SaveSunRasterFile(path, 0666), ERROR_CAN_NOT_OPEN_FILE); });
        EXPECT_THAT(log, HasSubstr("MEM_MGR: can not open: " + path + "\n"));
        EXPECT_EQ(path.ends_with("fifo"), log.find("is no regular file") != std::string::npos);
    }
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.SaveSunRasterFile("/dev/full", 0666), ERROR_CAN_NOT_WRITE_FILE); }),
                HasSubstr("MEM_MGR: can not save header for /dev/full\n"));
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(MEM_MGR().SaveSunRasterFile(plain, 0666), ERROR_ALGORITHM); }),
                HasSubstr("MEM_MGR: unknown data type\n"));
    EXPECT_EQ("user's own", Content(plain));

    const std::string own = folder.Path("own");
    image.SaveSunRasterFile(own, 0666);
    ASSERT_EQ(0, link(own.c_str(), folder.Path("other name").c_str()));
    image.MapUInt8(own, ACCESS_MODE::READ_ONLY);
    EXPECT_THROW(image.SaveSunRasterFile(folder.Path("other name"), 0666), ERROR_CAN_NOT_OPEN_FILE);
    EXPECT_EQ(132U, Content(own).size());
}

TEST(RasterFile, SizesBeyondTheHeadersWordsAreRefusedBeforeAnythingIsCreated) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("huge");
    constexpr long long kTwo32 = 1LL << 32;
    const std::pair<long long, long long> sizes[] = {
        {kTwo32, 0}, {0, kTwo32}, {-1, 4}, {1LL << 31, 1LL << 31}, {1LL << 62, 1LL << 62}};
    for (const auto& size : sizes) {
        const auto create = [&] { PRODUCT_SET().Add({"KEY", path, size.first, size.second, PIXEL_TYPE::FLT_6}); };
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(create(), ERROR_IMAGE); }),
                    HasSubstr(path + ": a raster file can not"));
        EXPECT_FALSE(std::filesystem::exists(path));
    }
}

TEST(RasterFile, AFullDiskIsAnErrorAndWhatWasWrittenStays) {
    const TEMPORARY_FOLDER folder;
    std::filesystem::create_directory(folder.Path("disk"));
    if (!MountSmallDisk(folder.Path("disk"), "size=1m")) GTEST_SKIP() << "no right to mount a small disk";
    const std::string path = folder.Path("disk/image");
    MEM_MGR image;
    image.Allocate(0, 0, 1023, 1023, PIXEL_TYPE::INT_16);
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(image.SaveSunRasterFile(path, 0666), ERROR_CAN_NOT_WRITE_FILE); }),
                HasSubstr("MEM_MGR: unable to write into: " + path + "\n"));
    EXPECT_GT(Content(path).size(), 500000U);
    umount(folder.Path("disk").c_str());
}

TEST(RasterFileDeathTest, AFailedMmapHasItsLines) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer can not live with little address space";
#endif
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("large");
    Write(path, Bytes("59a66a95 00010000 00004000 00000008 00000000 00000001 00000000 00000000"));
    ASSERT_EQ(0, truncate(path.c_str(), 32 + (1LL << 30)));
    const auto map_in_little_memory = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        const rlimit limit{512 << 20, 512 << 20};
        setrlimit(RLIMIT_AS, &limit);
        MEM_MGR image;
        try {
            image.MapUInt8(path, ACCESS_MODE::READ_ONLY);
        } catch (const ERROR_CAN_NOT_MMAP&) {
            _exit(7);
        }
    };
    EXPECT_EXIT(
        map_in_little_memory(), testing::ExitedWithCode(7),
        "ALARM : global : MEM_MGR: mmap: mmap failed..\n.*MEM_MGR: Cannot allocate memory\n(.|\n)*large: can not");
}

}  // namespace
