#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "lib/baselib/image/mem_mgr.h"
#include "tests/image/image_files.h"

namespace {

struct PIXEL_CASE {
    PIXEL_TYPE pixel_type;
    const char* data_type;
    int bytes;
    const char* depth;  ///< header words in hexadecimal, as the format's table gives them
    const char* type_word;
};

constexpr PIXEL_CASE kPixelCases[] = {
    {PIXEL_TYPE::U_INT_8, "u_int_8", 1, "00000008", "00000001"},
    {PIXEL_TYPE::INT_16, "int_16", 2, "00000010", "00000001"},
    {PIXEL_TYPE::INT_32, "int_32", 4, "00000020", "00000001"},
    {PIXEL_TYPE::FLT_2, "flt_2", 2, "00000010", "0000005d"},
    {PIXEL_TYPE::FLT_6, "flt_6", 4, "00000020", "00000063"},
    {PIXEL_TYPE::FLT_15, "flt_15", 8, "00000040", "00000062"},
    {PIXEL_TYPE::C_U_INT_8, "c_u_int_8", 2, "00000010", "0000005e"},
    {PIXEL_TYPE::C_INT_16, "c_int_16", 4, "00000020", "00000061"},
    {PIXEL_TYPE::C_FLT_2, "c_flt_2", 4, "00000020", "0000005c"},
    {PIXEL_TYPE::C_FLT_6, "c_flt_6", 8, "00000040", "00000060"},
    {PIXEL_TYPE::C_FLT_15, "c_flt_15", 16, "00000080", "0000005f"},
    {PIXEL_TYPE::RGB, "rgb", 3, "00000018", "00000003"},
};

/// 5 x 3: an odd width, which the standard layout would pad for 1- and 3-byte pixels.
std::string ExpectedFile(const PIXEL_CASE& c, const std::string& pixels) {
    char length[9];
    std::snprintf(length, sizeof length, "%08zx", pixels.size());
    return Bytes("59a66a95 00000005 00000003 " + std::string(c.depth) + length + c.type_word + "00000000 00000000") +
           pixels;
}

TEST(RasterFile, EveryPixelTypeIsSavedMappedAndCopiedByteForByte) {
    const SCRATCH_FOLDER folder;
    for (const PIXEL_CASE& c : kPixelCases) {
        SCOPED_TRACE(c.data_type);
        MEM_MGR image;
        image.Allocate(-2, 7, 2, 9, c.pixel_type);
        ASSERT_EQ(15, image.DataSize());
        ASSERT_EQ(c.bytes, image.BytesPerPixel());
        std::string pixels;
        for (int i = 0; i < 15 * c.bytes; ++i) pixels += static_cast<char>(i * 37 + 11);
        std::memcpy(image.Data(), pixels.data(), pixels.size());

        const std::string path = folder.Path(c.data_type);
        image.SaveSunRasterFile(path, 0666);
        ASSERT_EQ(ExpectedFile(c, pixels), FileBytes(path));

        MEM_MGR mapped;
        mapped.MapFile(path, ACCESS_MODE::READ_ONLY, c.pixel_type);
        EXPECT_EQ(c.data_type, mapped.DataType().Text());
        EXPECT_EQ(c.bytes, mapped.DataType().Size());
        EXPECT_EQ(15 * c.bytes, mapped.DataSize());
        EXPECT_EQ(32, mapped.HeaderSize());
        EXPECT_EQ(4, mapped.LastColumn());
        EXPECT_EQ(2, mapped.LastRow());
        const MEM_MGR copy(mapped);
        mapped.Free();
        EXPECT_EQ(STORAGE_STATE::IN_MEMORY, copy.Storage());
        EXPECT_EQ(pixels, std::string(reinterpret_cast<const char*>(copy.Data()), pixels.size()));
    }
}

}  // namespace
