#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "lib/baselib/image/product_set.h"
#include "simulation/copy_mem_mgr.h"
#include "simulation/initialize_mem_mgr.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::HasSubstr;

constexpr const char* kThreadCounts[] = {"1", "7"};

TEST(InitializeMemMgr, FillsEveryPixelOnAnyNumberOfThreads) {
    for (const char* const threads : kThreadCounts) {
        setenv("PARALLEL", threads, 1);
        for (const int columns : {0, 1, 7, 8, 37}) {  // with and without whole blocks of 32 bytes, and a rest
            MEM_MGR image;
            image.Allocate(-3, -5, columns - 4, 5, PIXEL_TYPE::FLT_6);
            float** const pixels = image.GetNumRecMatrix<float>();
            InitializeMemMgr(image, -9999.5F);
            for (int row = -5; row <= 5; ++row) {
                for (int column = -3; column <= columns - 4; ++column) ASSERT_EQ(-9999.5F, pixels[row][column]);
            }
        }
    }
}

TEST(InitializeMemMgr, TakesPixelsOfWholeWordsOnly) {
    setenv("PARALLEL", "2", 1);
    MEM_MGR image;
    image.Allocate(0, 0, 2, 2, PIXEL_TYPE::FLT_15);
    image.GetNumRecMatrix<double>()[2][2] = 5.0;
    InitializeMemMgr(image, 0U);
    EXPECT_EQ(0.0, image.GetNumRecMatrix<double>()[2][2]);
    image.Allocate(0, 0, 2, 2, PIXEL_TYPE::INT_16);
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(InitializeMemMgr(image, 0U), const char*); }),
                HasSubstr("rows 0..1: not supported pixel type"));
}

MEM_MGR Numbered(long long first, long long last_column, long long last_row) {
    MEM_MGR image;
    image.Allocate(first, first, last_column, last_row, PIXEL_TYPE::FLT_6);
    for (long long row = first; row <= last_row; ++row) {
        for (long long column = first; column <= last_column; ++column) {
            image.GetNumRecMatrix<float>()[row][column] = static_cast<float>(100 * row + column);
        }
    }
    return image;
}

TEST(CopyMemMgr, KeepsThePixelsAtTheDestinationsCoordinates) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("cropped");
    for (const char* const threads : kThreadCounts) {
        setenv("PARALLEL", threads, 1);
        const MEM_MGR source = Numbered(-2, 10, 8);
        PRODUCT_SET products;
        CopyMemMgr(source, 9, 7, products.Add({"KEY", path, 9, 7}));
        products.Place();
        products.Accept();
        MEM_MGR cropped;
        cropped.MapFlt6(path, ACCESS_MODE::READ_ONLY);
        ASSERT_EQ(7, cropped.Rows());
        for (int row = 0; row <= 6; ++row) {
            for (int column = 0; column <= 8; ++column) {
                ASSERT_EQ(static_cast<float>(100 * row + column), cropped.GetNumRecMatrix<float>()[row][column]);
            }
        }
    }
}

TEST(CopyMemMgr, RefusesPixelsThatAreNotInTheImageOrOfOtherSize) {
    setenv("PARALLEL", "2", 1);
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Path("refused");
    MEM_MGR source = Numbered(0, 5, 5);
    for (const auto& [columns, rows] : {std::pair{7, 6}, std::pair{6, 7}}) {
        PRODUCT_SET products;
        PRODUCT_FILE& file = products.Add({"KEY", path, columns, rows});
        EXPECT_THAT(LoggedBy([&, c = columns, r = rows] { EXPECT_THROW(CopyMemMgr(source, c, r, file), const char*); }),
                    HasSubstr(": wrong argument"));
    }
    PRODUCT_SET products;
    source.Allocate(1, 0, 5, 5, PIXEL_TYPE::FLT_6);  // has no column 0
    EXPECT_THROW(CopyMemMgr(source, 3, 3, products.Add({"KEY", path, 3, 3})), const char*);
    source.Allocate(0, 0, 5, 5, PIXEL_TYPE::INT_16);
    EXPECT_THROW(CopyMemMgr(source, 3, 3, products.Add({"KEY", path, 3, 3})), const char*);
    CopyMemMgr(source, 0, 0, products.Add({"KEY", path, 0, 0}));
}

/// Each thread waits for the rows before its own; the first one fails.
TEST(CopyMemMgr, AFailedPipeEndsAllThreads) {
    setenv("PARALLEL", "3", 1);
    const MEM_MGR source = Numbered(0, 5, 5);
    PRODUCT_SET products;
    PRODUCT_FILE& file = products.Add({"KEY", "/dev/full", 6, 6});
    EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(CopyMemMgr(source, 6, 6, file), const char*); }),
                HasSubstr("No space left on device"));
}

}  // namespace
