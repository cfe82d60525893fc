// What is written reads back identical, for every type; what the format cannot hold is refused.

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "tests/kit/temporary_folder.h"

namespace {

template <class T>
using LIMITS = std::numeric_limits<T>;

/// Values that are hard to keep: extremes, subnormals, values that need every digit.
template <class T>
std::vector<T> Hard() {
    if constexpr (std::is_floating_point_v<T>) {
        return {T(1) / 3, LIMITS<T>::max(), LIMITS<T>::denorm_min() * -3, std::nextafter(T(1), T(2)),
                -LIMITS<T>::infinity()};
    } else if constexpr (std::is_same_v<T, bool>) {
        return {false, true};
    } else if constexpr (std::is_same_v<T, STRING>) {
        return {"", " two  blanks ", "}", "# no comment", "tab\there", "b INT_32 5", "\xc3\xa4\x7f"};
    } else {
        return {T(0), LIMITS<T>::min(), LIMITS<T>::max()};
    }
}

/// Pairs of neighbouring hard values, as whatever record the type is.
template <class RECORD, class FIRST, class SECOND>
std::vector<RECORD> Pairs() {
    std::vector<RECORD> pairs;
    const auto firsts = Hard<FIRST>();
    const auto seconds = Hard<SECOND>();
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        pairs.push_back({firsts[i % firsts.size()], seconds[(i + 1) % seconds.size()]});
    }
    return pairs;
}

/// Writes the values as scalars, vectors and, where the format has them, matrices; reads them by another object.
template <class T>
void CheckRoundTrip(const std::vector<T>& values) {
    SCOPED_TRACE(kPoolTypes[kPoolType<T>].text);
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL_READ_WRITE_CHANGE writer(folder.Path());
    PARAMETER_POOL reader(folder.Path());
    const int count = static_cast<int>(values.size());
    ARRAY<T> array(-3, count);
    std::copy(values.begin(), values.end(), array.begin());
    writer.Change("vector", array);
    writer.Change("empty", ARRAY<T>(5, 0));
    for (int i = 0; i < count; ++i) writer.Change(std::to_string(i), array[i - 3]);
    if constexpr (kPoolType<MATRIX<T>> != 0) {
        MATRIX<T> matrix(2, count);
        std::copy(values.begin(), values.end(), matrix[1]);
        writer.Change("matrix", matrix);
        writer.Change("no_columns", MATRIX<T>(2, 0));
    }
    writer.Update();
    for (int i = 0; i < count; ++i) EXPECT_TRUE(reader.Get<T>(std::to_string(i)) == array[i - 3]) << i;
    const auto vector = reader.Get<ARRAY<T>>("vector");
    EXPECT_EQ(vector.First(), -3);
    EXPECT_TRUE(std::equal(vector.begin(), vector.end(), values.begin(), values.end()));
    EXPECT_EQ(reader.Get<ARRAY<T>>("empty").First(), 5);
    if constexpr (kPoolType<MATRIX<T>> != 0) {
        const auto matrix = reader.Get<MATRIX<T>>("matrix");
        EXPECT_TRUE(matrix.Rows() == 2 &&
                    std::equal(matrix[1], matrix[1] + matrix.Columns(), values.begin(), values.end()));
        EXPECT_EQ(reader.Get<MATRIX<T>>("no_columns").Rows(), 2);
    }
}

template <class... TYPES>
void CheckValues() {
    (CheckRoundTrip(Hard<TYPES>()), ...);
}

template <template <class...> class RECORD, class... PARTS>
void CheckPairs() {
    (CheckRoundTrip(Pairs<RECORD<PARTS>, PARTS, PARTS>()), ...);
}

TEST(PoolFormat, EveryTypeReadsBack) {
    CheckValues<bool, unsigned char, signed char, short, int, long long, float, double, STRING>();
    CheckPairs<COMPLEX, float, double>();
    CheckPairs<TUPLE, int, long long, float, double, STRING>();
    CheckRoundTrip(Pairs<INDEX<int, int>, int, int>());
    CheckRoundTrip(Pairs<INDEX<int, float>, int, float>());
    CheckRoundTrip(Pairs<INDEX<int, double>, int, double>());
}

TEST(PoolFormat, KeepsNanAndTheSignOfZero) {
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL_READ_WRITE_CHANGE pool(folder.Path());
    ARRAY<double> real(0, 2);
    const std::uint64_t signaling_nan = 0x7ff4000000000000U;  // must not trap
    std::memcpy(real.Data(), &signaling_nan, sizeof signaling_nan);
    real[1] = -0.0;
    pool.Change("real", real);
    pool.Update();
    EXPECT_TRUE(std::isnan(pool.Get<ARRAY<double>>("real")[0]));
    EXPECT_TRUE(std::signbit(pool.Get<ARRAY<double>>("real")[1]));
}

TEST(PoolFormat, RefusesWhatItCanNotHold) {
    const TEMPORARY_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\n");
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    const std::string longest(1024 - std::strlen("a STR \"\""), 'x');
    ARRAY<STRING> texts(0, 1);
    for (const std::string& bad : {std::string("a\"b"), std::string("a\nb"), longest + "x"}) {
        EXPECT_THROW(pool.Change("a", bad), INVALID_PARAMETER_VALUE) << bad;
        texts[0] = STRING(bad + "123456");
        EXPECT_THROW(pool.Change("a", texts), INVALID_PARAMETER_VALUE) << bad;
    }
    EXPECT_THROW(pool.Change("a", std::string("a\0b", 3)), INVALID_PARAMETER_VALUE);
    EXPECT_THROW(pool.Change(std::string(101, 'k'), 1), PARAMETER_KEY_TOO_LONG);
    for (const char* key : {"", "two words", "#a", "}", "a\n"})
        EXPECT_THROW(pool.Change(key, 1), ERROR_ARGUMENT) << key;
    EXPECT_THROW(pool.Change("a", 1, {"two\nlines"}), ERROR_ARGUMENT);
    pool.Update();
    EXPECT_EQ(Content(path), "a INT_32 1\n");

    pool.Change("a", longest);
    pool.Change(std::string(100, 'k'), 5);
    pool.Update();
    EXPECT_EQ(pool.Get<std::string>("a"), longest);
    EXPECT_EQ(pool.Get<int>(std::string(100, 'k')), 5);
}

TEST(PoolFormat, TheDocumentsExampleReads) {
    const std::string document = Content(VELMORA_SOURCE_DIR "/docs/pools.md");
    const std::size_t begin = document.find("```pool\n") + 8;
    const TEMPORARY_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(document.substr(begin, document.find("```", begin) - begin)));
    EXPECT_EQ(pool.Get<double>("sampling_rate"), 1.0988e8);
    EXPECT_EQ(pool.Get<TUPLE<STRING>>("window").second, STRING("2.5"));
    EXPECT_THAT(pool.Get<ARRAY<double>>("coefficients"), testing::ElementsAre(12.5, -0.03, 1.2e-6));
    EXPECT_EQ(pool.Get<ARRAY<COMPLEX<float>>>("samples")[-1], (COMPLEX<float>{0.5F, -1.0F}));
    EXPECT_EQ(pool.Get<MATRIX<short>>("weights")[1][2], -3);
}

}  // namespace
