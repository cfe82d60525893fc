#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "simulation/copy_mem_mgr.h"
#include "simulation/initialize_mem_mgr.h"
#include "tests/kit/log_capture.h"

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
    for (const char* const threads : kThreadCounts) {
        setenv("PARALLEL", threads, 1);
        const MEM_MGR source = Numbered(-2, 10, 8);
        MEM_MGR cropped;
        cropped.Allocate(0, 0, 8, 6, PIXEL_TYPE::FLT_6);
        CopyMemMgr(source, cropped);
        for (int row = 0; row <= 6; ++row) {
            for (int column = 0; column <= 8; ++column) {
                ASSERT_EQ(static_cast<float>(100 * row + column), cropped.GetNumRecMatrix<float>()[row][column]);
            }
        }
    }
}

TEST(CopyMemMgr, RefusesPixelsThatAreNotInBothImages) {
    setenv("PARALLEL", "2", 1);
    const MEM_MGR source = Numbered(0, 5, 5);
    MEM_MGR destination;
    const std::pair<long long, long long> too_large[] = {{6, 5}, {5, 6}};
    for (const auto& [last_column, last_row] : too_large) {
        destination.Allocate(0, 0, last_column, last_row, PIXEL_TYPE::FLT_6);
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(CopyMemMgr(source, destination), const char*); }),
                    HasSubstr(": wrong argument"));
    }
    destination.Allocate(1, 0, 5, 5, PIXEL_TYPE::FLT_6);  // has no column 0
    EXPECT_THROW(CopyMemMgr(source, destination), const char*);
    destination.Allocate(0, 0, 5, 5, PIXEL_TYPE::INT_32);
    EXPECT_THROW(CopyMemMgr(source, destination), const char*);
    destination.Allocate(0, 0, -1, -1, PIXEL_TYPE::FLT_6);
    CopyMemMgr(source, destination);
}

}  // namespace
