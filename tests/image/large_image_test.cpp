/// \file large_image_test.cpp
/// Images beyond 2 and 4 GiB, where 32-bit sizes go wrong. Files are sparse where the image allows it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/product_set.h"
#include "tests/kit/hexadecimal.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

constexpr long long kGib = 1LL << 30;

/// A file of this header, then nothing but zeros up to the size.
void WriteSparseFile(const std::string& path, const std::string& header, long long bytes) {
    Write(path, Bytes(header));
    ASSERT_EQ(0, truncate(path.c_str(), bytes)) << std::strerror(errno);
}

std::string BytesAt(const std::string& path, long long offset, std::size_t count) {
    std::ifstream file(path, std::ios::binary);
    file.seekg(offset);
    std::string bytes(count, '?');
    file.read(bytes.data(), static_cast<std::streamsize>(count));
    return file ? bytes : "";
}

TEST(LargeImage, AFileOfMoreThan4GibIsMappedAndReached) {
    const TEMPORARY_FOLDER folder(true);
    const std::string path = folder.Path("sparse");
    // 40000 x 40000 pixels of 4 bytes: 6.4e9; the length word can not tell it.
    const long long size = 32 + 4 * 40000LL * 40000LL;
    WriteSparseFile(path, "59a66a95 00009c40 00009c40 00000020 00000000 00000001 00000000 00000000", size);
    MEM_MGR image;
    image.MapInt32(path, ACCESS_MODE::READ_WRITE);
    EXPECT_EQ(size - 32, image.DataSize());
    std::int32_t** const table = image.GetNumRecMatrix<std::int32_t>();
    for (const int row : {13421, 13422, 26843, 26844, 39999}) table[row][39999] = 0x01000000 + row;  // 2 and 4 GiB
    image.Free();
    for (const int row : {13421, 13422, 26843, 26844, 39999}) {
        std::int32_t stored = 0;
        std::memcpy(&stored, BytesAt(path, 32 + 4 * (40000LL * row + 39999), 4).data(), 4);
        EXPECT_EQ(0x01000000 + row, stored);
    }
    ASSERT_EQ(0, truncate(path.c_str(), size - 1));
    EXPECT_THROW(image.MapInt32(path, ACCESS_MODE::READ_ONLY), ERROR_IMAGE);
    // Modulo 2^32 the pixels would fit into this file.
    ASSERT_EQ(0, truncate(path.c_str(), size - 4 * kGib));
    EXPECT_THROW(image.MapInt32(path, ACCESS_MODE::READ_ONLY), ERROR_IMAGE);
}

TEST(LargeImage, OfMoreThan2And4GibAreSaved) {
    const TEMPORARY_FOLDER folder(true);
    const std::string path = folder.Path("image");
    if (std::filesystem::space(folder.Path("")).available < 8ULL * kGib) GTEST_SKIP() << "needs 8 GiB on " << path;
    for (const auto& [columns, rows, size] :
         {std::tuple{60000, 50000, "0000ea60 0000c350 00000008 b2d05e00"},  // 3e9 bytes
          std::tuple{65536, 65536, "00010000 00010000 00000008 00000000"}}) {
        MEM_MGR image;
        image.Allocate(0, 0, columns - 1, rows - 1, PIXEL_TYPE::U_INT_8);
        image.GetNumRecMatrix<std::uint8_t>()[rows - 1][columns - 2] = 0xab;
        image.SaveSunRasterFile(path, 0666);
        EXPECT_EQ(Bytes("59a66a95 " + std::string(size) + " 00000001 00000000 00000000"), BytesAt(path, 0, 32));
        EXPECT_EQ(32U + 1ULL * columns * rows, std::filesystem::file_size(path));
        EXPECT_EQ(Bytes("00ab00"), BytesAt(path, 32 + 1LL * columns * rows - 3, 3));
    }
}

TEST(LargeImage, MoreThan4GibAreWrittenWithALengthOf0AndMapped) {
    const TEMPORARY_FOLDER folder(true);
    const std::string path = folder.Path("image");
    if (std::filesystem::space(folder.Path("")).available < 5ULL * kGib) GTEST_SKIP() << "needs 5 GiB on " << path;
    constexpr long long kSize = 65536;  // squared: one byte more than a word counts
    PRODUCT_SET products;
    PRODUCT_FILE& file = products.Add({"KEY", path, kSize, kSize, PIXEL_TYPE::U_INT_8});
    products.ReserveRoom();
    std::vector<std::uint8_t> band(kSize * 1024);
    for (long long row = 0; row < kSize; row += 1024) {
        band[3] = static_cast<std::uint8_t>(row / 1024);
        file.WriteRows(row, 1024, band.data());
    }
    products.Place();
    products.Accept();
    EXPECT_EQ(Bytes("59a66a95 00010000 00010000 00000008 00000000 00000001 00000000 00000000"), BytesAt(path, 0, 32));
    MEM_MGR image;
    EXPECT_EQ(std::string::npos,
              LoggedBy([&] { image.MapFileChecked(path, ACCESS_MODE::READ_ONLY, PIXEL_TYPE::U_INT_8); }).find("WARN"));
    ASSERT_EQ(kSize * kSize, image.DataSize());
    for (long long row = 0; row < kSize; row += 1024) {
        ASSERT_EQ(row / 1024, image.GetNumRecMatrix<std::uint8_t>()[row][3]);
        ASSERT_EQ(0, image.GetNumRecMatrix<std::uint8_t>()[row + 1][3]);
    }
}

}  // namespace
