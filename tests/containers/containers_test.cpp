#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <string>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/matrix.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/containers/sub_array.h"
#include "lib/baselib/errors/error_exception.h"

// The tests ask for blocks that no machine has; the sanitizer's allocator must answer as the C library does.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

// Not a constant for the compiler, which would else warn of the very overflows that the tests are about.
int Huge() {
    static volatile int huge = std::numeric_limits<int>::max();
    return huge;
}

struct ALMOST_ONE_GIGABYTE {
    char bytes[(1 << 30) - 32];
};

TEST(AlignedBlock, HoldsCountZerosAndElements) {
    double* const elements = MEM_ALLOCATION::Allocate<double>(3);
    ASSERT_NE(elements, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(elements) % 32, 0u);
    long long header[4];
    std::memcpy(header, reinterpret_cast<const char*>(elements) - 32, 32);
    EXPECT_THAT(header, testing::ElementsAre(3, 0, 0, 0));
    EXPECT_THAT(std::vector<double>(elements, elements + 3), testing::Each(0.0));
    MEM_ALLOCATION::Free(elements);
}

TEST(NoMemory, IsRefusedInsteadOfABlockTooSmall) {
    const volatile long long wraps_to_32_bytes = 1LL << 61;  // times 8 is 2^64
    EXPECT_EQ(MEM_ALLOCATION::Allocate<double>(wraps_to_32_bytes), nullptr);
    EXPECT_EQ(MEM_ALLOCATION::Allocate<double>(-1), nullptr);
    ARRAY<ALMOST_ONE_GIGABYTE> array;
    EXPECT_EQ(array.Resize({0, Huge()}), 2);
    EXPECT_EQ(array.Count(), 0);
    EXPECT_THROW((ARRAY<ALMOST_ONE_GIGABYTE>(0, Huge())), ERROR_NO_MEMORY);
    EXPECT_THROW((ARRAY<int>(0, -1)), ERROR_ARGUMENT);
    MATRIX<COMPLEX<double>> matrix(1, 1);
    EXPECT_EQ(matrix.Resize(Huge(), Huge()), 2);  // 2^66 bytes
    EXPECT_EQ(matrix.Rows(), 1);
    EXPECT_THROW((MATRIX<double>(Huge(), Huge())), ERROR_NO_MEMORY);
}

TEST(Array, ResizeCodes) {
    ARRAY<int> array(10, 4);
    std::iota(array.begin(), array.end(), 1);
    const int* const storage = array.Data();

    EXPECT_EQ(array.Resize({10, -1}), 3);
    EXPECT_EQ(array.Data(), storage);
    EXPECT_THAT(array, testing::ElementsAre(1, 2, 3, 4));

    EXPECT_EQ(array.Resize({-2, 6}), 0);
    EXPECT_THAT(array, testing::ElementsAre(1, 2, 3, 4, 0, 0));
    EXPECT_EQ(array.Resize({0, 2}), 0);
    EXPECT_THAT(array, testing::ElementsAre(1, 2));
}

TEST(Array, ReachesItsEndsFromAnyFirstIndex) {
    for (const int first : {std::numeric_limits<int>::min(), Huge() - 1}) {
        ARRAY<short> array(first, 2);
        array[first] = 7;
        array[first + 1] = 8;
        EXPECT_THAT(array, testing::ElementsAre(7, 8)) << first;
    }
}

TEST(Array, OwnsElementsOfEitherOrigin) {
    ARRAY<STRING> adopted(new STRING[2]{"a", "b"}, {1, 2});
    ARRAY<STRING> copy = adopted;
    EXPECT_EQ(adopted.Resize({1, 3}), 0);
    adopted[3] = "c";
    EXPECT_THAT(adopted, testing::ElementsAre(STRING("a"), STRING("b"), STRING("c")));
    copy = std::move(adopted);
    const ARRAY<STRING>& same = copy;
    copy = same;
    EXPECT_EQ(copy[2], STRING("b"));
}

TEST(Matrix, RowsLinkIntoOneBlock) {
    MATRIX<int> matrix(2, 3);
    std::iota(matrix.Data(), matrix.Data() + 6, 1);
    ASSERT_EQ(matrix.Resize(3, 2), 0);
    EXPECT_THAT(std::vector<int>(matrix.Data(), matrix.Data() + 6), testing::ElementsAre(1, 2, 4, 5, 0, 0));

    MATRIX<int> copy = matrix;
    copy[2][1] = 9;
    EXPECT_EQ(matrix[2][1], 0);
    matrix = std::move(copy);
    EXPECT_EQ(matrix[2][1], 9);
    EXPECT_EQ(matrix.Resize(-1, 2), 3);
}

TEST(SubArray, IsAViewAndNeverAssigned) {
    ARRAY<int> array(5, 4);
    std::iota(array.begin(), array.end(), 0);
    SUB_ARRAY<int> view(array, {6, 2}, 1);
    view[2] = 42;
    EXPECT_EQ(array[7], 42);
    EXPECT_THROW(view = SUB_ARRAY<int>(view), ERROR_NOT_IMPLEMENTED);
    EXPECT_THROW((SUB_ARRAY<int>(array, {4, 2})), ERROR_ARGUMENT);
    EXPECT_THROW((SUB_ARRAY<int>(array, {8, 2})), ERROR_ARGUMENT);
}

TEST(String, CountsItsTerminator) {
    STRING text = "abc";
    EXPECT_EQ(text.Size(), 4u);
    EXPECT_EQ(text[3], '\0');
    EXPECT_THROW(text[4] = 'x', std::out_of_range);
    STRING taken = std::move(text);
    EXPECT_EQ(taken, STRING("abc"));
    text = taken;
    EXPECT_EQ(text.ToStd(), "abc");
}

}  // namespace
