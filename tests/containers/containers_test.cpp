#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/matrix.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/containers/sub_array.h"
#include "lib/baselib/containers/vector.h"
#include "lib/baselib/errors/error_exception.h"
#include "tests/kit/log_capture.h"

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

using testing::ElementsAre;

/// Counts those that live, and the blocks from array new; making or assigning one fails on request.
struct COUNTED {
    static inline int living = 0;
    static inline int array_news = 0;
    static inline int makes_before_failure = -1;
    static inline bool assignments_lack_memory = false;
    static constexpr const char* failure_of_assignment = "of the element's own";

    COUNTED() {
        if (makes_before_failure-- == 0) throw std::bad_alloc();
        ++living;
    }
    COUNTED(const COUNTED&) : COUNTED() {}
    COUNTED& operator=(const COUNTED&) {
        if (assignments_lack_memory) throw std::bad_alloc();
        if (makes_before_failure-- == 0) throw failure_of_assignment;
        return *this;
    }
    ~COUNTED() { --living; }
    static void* operator new[](std::size_t size) {
        ++array_news;
        return ::operator new[](size);
    }
    static void operator delete[](void* block) {
        --array_news;
        ::operator delete[](block);
    }
};

template <class T, template <class> class CONTAINER>
std::vector<T> ElementsOf(const CONTAINER<T>& container) {
    return {container.begin(), container.end()};
}

struct ALMOST_ONE_GIGABYTE {
    char bytes[(1 << 30) - 32];
};

TEST(AlignedBlock, HoldsCountZerosAndElements) {
    auto* const used = static_cast<volatile char*>(std::malloc(60000));  // what the next block may find in its memory
    for (int i = 0; i < 60000; ++i) used[i] = '\xff';
    std::free(const_cast<char*>(used));
    double* const elements = MEM_ALLOCATION::Allocate<double>(3);
    ASSERT_NE(elements, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(elements) % 32, 0u);
    long long header[4];
    std::memcpy(header, reinterpret_cast<const char*>(elements) - 32, 32);
    EXPECT_THAT(header, ElementsAre(3, 0, 0, 0));
    EXPECT_THAT(std::vector<double>(elements, elements + 3), testing::Each(0.0));
    EXPECT_EQ(MEM_ALLOCATION::BlockCount(elements), 3);
    MEM_ALLOCATION::Free(elements);
    MEM_ALLOCATION::Free<double>(nullptr);
    MEM_ALLOCATION::FreeBlock(nullptr);
}

TEST(NoMemory, TellsTheNewHandlerOnce) {
    static int calls;
    for (const std::new_handler handler : {+[] { ++calls; },
                                           +[] {
                                               ++calls;
                                               throw std::bad_alloc();
                                           }}) {
        calls = 0;
        const std::new_handler before = std::set_new_handler(handler);
        EXPECT_EQ(MEM_ALLOCATION::Allocate<char>(1LL << 60), nullptr);
        std::set_new_handler(before);
        EXPECT_EQ(calls, 1);
    }
}

TEST(AlignedBlock, MakesAndEndsEachElementOnce) {
    COUNTED* const elements = MEM_ALLOCATION::Allocate<COUNTED>(5);
    EXPECT_EQ(COUNTED::living, 5);
    MEM_ALLOCATION::Free(elements);
    EXPECT_EQ(COUNTED::living, 0);
    COUNTED::makes_before_failure = 2;
    EXPECT_EQ(MEM_ALLOCATION::Allocate<COUNTED>(5), nullptr);
    EXPECT_EQ(COUNTED::living, 0) << "the first two ended when the third failed";
}

TEST(NoMemory, IsRefusedInsteadOfABlockTooSmall) {
    const volatile long long wraps_to_32_bytes = 1LL << 61;  // times 8 is 2^64
    EXPECT_EQ(MEM_ALLOCATION::Allocate<double>(wraps_to_32_bytes), nullptr);
    EXPECT_EQ(MEM_ALLOCATION::Allocate<char>(std::numeric_limits<long long>::max() - 16), nullptr) << "header included";
    EXPECT_EQ(MEM_ALLOCATION::Allocate<double>(-1), nullptr);
    double* const none = MEM_ALLOCATION::Allocate<double>(0);
    EXPECT_NE(none, nullptr) << "a block without elements is no failure";
    MEM_ALLOCATION::Free(none);
    ARRAY<ALMOST_ONE_GIGABYTE> array;
    EXPECT_EQ(array.Resize({0, Huge()}), 2);
    EXPECT_EQ(array.Count(), 0);
    ARRAY<COUNTED> one;
    COUNTED::makes_before_failure = 0;
    EXPECT_EQ(one.Resize({0, 1}), 2);
    MATRIX<COUNTED> single;
    COUNTED::makes_before_failure = 0;
    EXPECT_EQ(single.Resize(1, 1), 2);
    MATRIX<COMPLEX<double>> matrix(1, 1);
    EXPECT_EQ(matrix.Resize(Huge(), Huge()), 2);  // 2^66 bytes
    EXPECT_EQ(matrix.Rows(), 1);

    const std::string object = "ALARM : global : OBJECT: can not allocate core object\n";
    const std::string count = ": an element count of -1 is not possible\n";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[] { ARRAY<ALMOST_ONE_GIGABYTE>(0, Huge()); }, "not enough memory\n" + object},
        {[] { MATRIX<double>(Huge(), Huge()); }, "not enough memory\n" + object},
        {[] { ARRAY<int>(0, -1); }, "wrong argument\nALARM : global : ARRAY" + count},
        {[] { MATRIX<int>(3, -1); }, "wrong argument\nALARM : global : MATRIX" + count},
        {[] { MATRIX<int>(-1, 3); }, "wrong argument\nALARM : global : MATRIX" + count},
        {[] {
             COUNTED::makes_before_failure = 0;
             (void)CreateCoreObject<COUNTED>();
         },
         "not enough memory\n" + object},
        {[] { VECTOR<int>(-1); }, "wrong argument\nALARM : global : ARRAY" + count},
    };
    for (const auto& [make, said] : cases) EXPECT_EQ(ErrorAndLogOf(make), said);
}

TEST(Array, ResizeCodes) {
    ARRAY<int> array(10, 4);
    std::iota(array.begin(), array.end(), 1);
    const int* const storage = array.Data();

    EXPECT_EQ(array.Resize({10, -1}), 3);
    EXPECT_EQ(array.Resize({10, 4}), 0);
    EXPECT_EQ(array.Data(), storage) << "the range that it has";
    EXPECT_THAT(array, ElementsAre(1, 2, 3, 4));

    EXPECT_EQ(array.Resize({-2, 6}), 0);
    EXPECT_THAT(array, ElementsAre(1, 2, 3, 4, 0, 0));
    EXPECT_EQ(array[-2], 1);
    EXPECT_EQ(array.Resize({0, 2}), 0);
    EXPECT_THAT(array, ElementsAre(1, 2));
    EXPECT_EQ(array.Resize({0, 0}), 0);
    EXPECT_EQ(array.size(), 0u);
}

TEST(Array, ReachesItsEndsFromAnyFirstIndex) {
    for (const int first : {std::numeric_limits<int>::min(), Huge() - 1}) {
        ARRAY<short> array(first, 2);
        array[first] = 7;
        array[first + 1] = 8;
        EXPECT_THAT(array, ElementsAre(7, 8)) << first;
        EXPECT_EQ(std::as_const(array)[first + 1], 8);
        EXPECT_EQ(array.First(), first);
        EXPECT_EQ(array.Range(), (RANGE<int>{first, 2}));
    }
}

TEST(Array, OwnsElementsOfEitherOrigin) {
    ARRAY<STRING> adopted(new STRING[2]{"a", "b"}, {1, 2});
    ARRAY<STRING> copy = adopted;
    EXPECT_EQ(adopted.Resize({1, 3}), 0);
    adopted[3] = "c";
    EXPECT_THAT(adopted, ElementsAre(STRING("a"), STRING("b"), STRING("c")));
    EXPECT_THAT(copy, ElementsAre(STRING("a"), STRING("b")));
    copy = std::move(adopted);
    const ARRAY<STRING>& same = copy;
    copy = same;
    EXPECT_EQ(copy[2], STRING("b"));
    EXPECT_EQ(copy.Count(), 3);
}

TEST(Array, ReleasesEachElementTheWayItCame) {
    {
        ARRAY<COUNTED> adopted(new COUNTED[3], {0, 3});
        EXPECT_EQ(COUNTED::array_news, 1);
        ARRAY<COUNTED> moved = std::move(adopted);
        EXPECT_EQ(moved.Resize({0, 4}), 0) << "into a block of its own";
        EXPECT_EQ(COUNTED::array_news, 0);
        EXPECT_EQ(COUNTED::living, 4);
        ARRAY<COUNTED> copy = moved;
        EXPECT_EQ(COUNTED::living, 8);
        COUNTED::makes_before_failure = 6;  // four are made, the third of the copies fails
        EXPECT_EQ(TextThrownBy([&] { ARRAY<COUNTED> failing(moved); }), "of the element's own");
        EXPECT_EQ(COUNTED::living, 8);
        COUNTED::assignments_lack_memory = true;
        EXPECT_EQ(TextThrownBy([&] { ARRAY<COUNTED> failing(moved); }), "ARRAY : can not copy array");
        COUNTED::assignments_lack_memory = false;
        EXPECT_EQ(COUNTED::living, 8);
        COUNTED::makes_before_failure = 0;
        EXPECT_EQ(TextThrownBy([&] { copy = moved; }), "ARRAY : can not copy array");
        EXPECT_EQ(copy.Count(), 4);
    }
    EXPECT_EQ(COUNTED::living, 0);
    EXPECT_EQ(COUNTED::array_news, 0);
}

TEST(Matrix, RowsLinkIntoOneBlock) {
    MATRIX<int> matrix(2, 3);
    std::iota(matrix.Data(), matrix.Data() + 6, 1);
    EXPECT_EQ(matrix[1], matrix.Data() + 3);
    const int* const storage = matrix.Data();
    ASSERT_EQ(matrix.Resize(2, 3), 0);
    EXPECT_EQ(matrix.Data(), storage) << "the shape that it has";
    ASSERT_EQ(matrix.Resize(3, 2), 0);
    EXPECT_EQ(matrix.Size(), 6);
    EXPECT_THAT(std::vector<int>(matrix.Data(), matrix.Data() + 6), ElementsAre(1, 2, 4, 5, 0, 0));

    MATRIX<int> copy = matrix;
    EXPECT_THAT(std::vector<int>(copy.Data(), copy.Data() + 6), ElementsAre(1, 2, 4, 5, 0, 0));
    copy[2][1] = 9;
    EXPECT_EQ(matrix[2][1], 0);
    matrix = std::move(copy);
    EXPECT_EQ(std::as_const(matrix)[2][1], 9);
    const MATRIX<int>& same = matrix;
    matrix = same;
    EXPECT_EQ(matrix[2][1], 9);
    copy = same;
    EXPECT_EQ(copy[2][1], 9);
    for (const auto& [rows, columns] : {std::pair{-1, 2}, {2, -1}}) EXPECT_EQ(matrix.Resize(rows, columns), 3);
    struct GIANT {
        char bytes[1L << 31];
    };
    MATRIX<GIANT> none;
    EXPECT_EQ(none.Resize(2, std::numeric_limits<int>::max()), ARRAY<GIANT>::kNoMemory);
    EXPECT_EQ(none.Size(), 0);
    for (const auto& [rows, columns] : {std::pair{3, 1}, {2, 1}, {2, 4}, {0, 4}, {2, 0}}) {
        ASSERT_EQ(matrix.Resize(rows, columns), 0);
        EXPECT_EQ(matrix.Rows(), rows);
        EXPECT_EQ(matrix.Columns(), columns);
        EXPECT_EQ(matrix.Size() > 0 ? matrix[0][0] : 1, 1);
    }
}

TEST(SubArray, IsAViewAndNeverAssigned) {
    ARRAY<int> array(5, 4);
    std::iota(array.begin(), array.end(), 0);
    SUB_ARRAY<int> view(array, {6, 2}, 1);
    view[2] = 42;
    EXPECT_EQ(array[7], 42);
    EXPECT_EQ(std::as_const(view)[2], 42);
    EXPECT_THAT(ElementsOf(view), ElementsAre(1, 42));
    for (int& element : view) element += 10;
    EXPECT_THAT(array, ElementsAre(0, 11, 52, 3));
    for (int& element : view) element -= 10;
    EXPECT_EQ(view.Range(), (RANGE<int>{1, 2}));
    EXPECT_EQ(view.First(), 1);
    EXPECT_EQ(SUB_ARRAY<int>(array, {5, 0}).Count(), 0);
    EXPECT_EQ(SUB_ARRAY<int>(array, {5, 4})[3], 3);
    EXPECT_EQ(view.Count(), 2);
    EXPECT_THAT(ElementsOf(SUB_ARRAY<int>(array, {5, 4})), ElementsAre(0, 1, 42, 3));
    EXPECT_THROW(view = SUB_ARRAY<int>(view), ERROR_NOT_IMPLEMENTED);
    for (const RANGE<int> beyond : {RANGE<int>{4, 2}, {8, 2}, {6, -1}}) {
        EXPECT_EQ(ErrorAndLogOf([&] { SUB_ARRAY<int>(array, beyond); }),
                  "wrong argument\nALARM : global : SUB_ARRAY: " + std::to_string(beyond.count) +
                      " elements from index " + std::to_string(beyond.first) + " are not within the array\n");
    }
}

TEST(Vector, HasItsElementsOrZeros) {
    EXPECT_THAT(ElementsOf(VECTOR<double>({1.0, 2.0})), ElementsAre(1.0, 2.0));
    VECTOR<int> two(2);
    two[1] = 7;
    EXPECT_THAT(ElementsOf(two), ElementsAre(0, 7));
    const VECTOR<int> three{4, 5, 6};
    EXPECT_EQ(three.Dimension(), 3);
    EXPECT_EQ(three[0], 4);
    EXPECT_EQ(three[2], 6);
}

TEST(String, CountsItsTerminator) {
    STRING text = "abc";
    EXPECT_EQ(text.Size(), 4u);
    EXPECT_EQ(text[3], '\0');
    EXPECT_EQ(std::as_const(text)[0], 'a');
    EXPECT_THROW(text[4] = 'x', std::out_of_range);
    STRING& source = text;
    STRING taken = std::move(source);
    EXPECT_EQ(taken, STRING("abc"));
    EXPECT_EQ(text.ToStd(), "") << "it stays an empty text";
    text = taken;
    const STRING& same = text;
    text = same;
    EXPECT_EQ(text.ToStd(), "abc");
    EXPECT_EQ(STRING().Size(), 1u);
    EXPECT_TRUE(STRING("ab") < text && !(text < STRING("abc")) && !(STRING("b") < text));
}

}  // namespace
