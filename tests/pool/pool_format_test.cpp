// What is written reads back identical, for every type; what the format cannot hold is refused.

#include <gmock/gmock.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <set>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "tests/pool/pool_files.h"

namespace {

template <class T>
using LIMITS = std::numeric_limits<T>;

/// Values that are hard to keep: extremes, subnormals, values that need every digit, both infinities, nan.
template <class T>
std::vector<T> Hard() {
    if constexpr (std::is_floating_point_v<T>) {
        return {T(0),
                -T(0),
                T(1) / 3,
                LIMITS<T>::max(),
                LIMITS<T>::lowest(),
                LIMITS<T>::min(),
                LIMITS<T>::denorm_min(),
                -LIMITS<T>::denorm_min() * 3,
                std::nextafter(T(1), T(2)),
                LIMITS<T>::infinity(),
                -LIMITS<T>::infinity(),
                LIMITS<T>::quiet_NaN()};
    } else if constexpr (std::is_same_v<T, bool>) {
        return {false, true};
    } else if constexpr (std::is_same_v<T, STRING>) {
        return {"", " two  blanks ", "{", "}", "# no comment", "tab\there", "\\n", "b INT_32 5", "\xc3\xa4\x7f"};
    } else {
        return {T(0), T(1), LIMITS<T>::min(), LIMITS<T>::max()};
    }
}

template <class T>
bool Same(const T& a, const T& b) {
    if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
        using BITS = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
        return std::bit_cast<BITS>(a) == std::bit_cast<BITS>(b) || (std::isnan(a) && std::isnan(b));
    } else if constexpr (requires { a.re; }) {
        return Same(a.re, b.re) && Same(a.im, b.im);
    } else if constexpr (requires { a.index; }) {
        return Same(a.index, b.index) && Same(a.value, b.value);
    } else if constexpr (requires { a.first; }) {
        return Same(a.first, b.first) && Same(a.second, b.second);
    } else {
        return a == b;
    }
}
template <class T>
bool Same(const ARRAY<T>& a, const ARRAY<T>& b) {
    return a.Range() == b.Range() &&
           std::equal(a.begin(), a.end(), b.begin(), [](auto& x, auto& y) { return Same(x, y); });
}
template <class T>
bool Same(const MATRIX<T>& a, const MATRIX<T>& b) {
    return a.Rows() == b.Rows() && a.Columns() == b.Columns() &&
           std::equal(a.Data(), a.Data() + a.Size(), b.Data(), [](auto& x, auto& y) { return Same(x, y); });
}

/// Pairs of neighbouring hard values, as whatever record the type is.
template <class RECORD, class FIRST, class SECOND>
std::vector<RECORD> Pairs() {
    std::vector<RECORD> pairs;
    const auto firsts = Hard<FIRST>();
    const auto seconds = Hard<SECOND>();
    for (std::size_t i = 0; i < std::max(firsts.size(), seconds.size()); ++i) {
        pairs.push_back({firsts[i % firsts.size()], seconds[(i + 1) % seconds.size()]});
    }
    return pairs;
}

class ROUND_TRIP {
  public:
    /// Scalars, vectors and, where the format has them, matrices of these values.
    template <class T>
    void Check(const std::vector<T>& values) {
        for (const T& value : values) CheckOne(value);
        ARRAY<T> array(-3, static_cast<int>(values.size()));
        std::copy(values.begin(), values.end(), array.begin());
        CheckOne(array);
        CheckOne(ARRAY<T>(LIMITS<int>::max(), 1));
        CheckOne(ARRAY<T>(5, 0));
        if constexpr (kPoolType<MATRIX<T>> != 0) {
            MATRIX<T> matrix(static_cast<int>(values.size()), 2);
            for (int i = 0; i < matrix.Size(); ++i) matrix.Data()[i] = values[static_cast<std::size_t>(i / 2)];
            CheckOne(matrix);
            CheckOne(MATRIX<T>(0, 3));
            CheckOne(MATRIX<T>(2, 0));
        }
    }
    /// Writes all values with one update, reads them by another object, and writes them once more.
    void Finish() {
        const std::string path = folder_.Make("# head\nbefore INT_32 1\n\nafter INT_32 2\n");
        PARAMETER_POOL_READ_WRITE_CHANGE writer(path);
        for (const auto& change : changes_) change(writer);
        writer.Update();
        PARAMETER_POOL reader(path);
        EXPECT_EQ(reader.Get<int>("after"), 2);
        for (const auto& comparison : comparisons_) comparison(reader);
        const std::string content = POOL_FOLDER::Content(path);
        for (const auto& change : changes_) change(writer);
        writer.Update();
        EXPECT_EQ(POOL_FOLDER::Content(path), content);
    }
    const std::set<int>& Types() const { return types_; }

  private:
    template <class T>
    void CheckOne(const T& value) {
        types_.insert(kPoolType<T>);
        const std::string key = "key_" + std::to_string(changes_.size());
        changes_.push_back([=](PARAMETER_POOL_READ_WRITE_CHANGE& pool) { pool.Change(key, value); });
        comparisons_.push_back([=](PARAMETER_POOL& pool) {
            EXPECT_TRUE(Same(pool.Get<T>(key), value)) << key << " " << kPoolTypes[kPoolType<T>].text;
        });
    }

    POOL_FOLDER folder_;
    std::set<int> types_;
    std::vector<std::function<void(PARAMETER_POOL_READ_WRITE_CHANGE&)>> changes_;
    std::vector<std::function<void(PARAMETER_POOL&)>> comparisons_;
};

TEST(PoolFormat, EveryTypeReadsBackBitForBit) {
    ROUND_TRIP trip;
    trip.Check(Hard<bool>());
    trip.Check(Hard<unsigned char>());
    trip.Check(Hard<signed char>());
    trip.Check(Hard<short>());
    trip.Check(Hard<int>());
    trip.Check(Hard<long long>());
    trip.Check(Hard<float>());
    trip.Check(Hard<double>());
    trip.Check(Hard<STRING>());
    trip.Check(Pairs<COMPLEX<float>, float, float>());
    trip.Check(Pairs<COMPLEX<double>, double, double>());
    trip.Check(Pairs<TUPLE<int>, int, int>());
    trip.Check(Pairs<TUPLE<long long>, long long, long long>());
    trip.Check(Pairs<TUPLE<float>, float, float>());
    trip.Check(Pairs<TUPLE<double>, double, double>());
    trip.Check(Pairs<INDEX<int, int>, int, int>());
    trip.Check(Pairs<INDEX<int, float>, int, float>());
    trip.Check(Pairs<INDEX<int, double>, int, double>());
    trip.Check(Pairs<TUPLE<STRING>, STRING, STRING>());
    EXPECT_EQ(trip.Types().size(), 47u);
    trip.Finish();
}

TEST(PoolFormat, ASignalingNanIsWrittenAsNan) {  // and does not trap
    const POOL_FOLDER folder;
    PARAMETER_POOL_READ_WRITE_CHANGE pool(folder.Path());
    ARRAY<float> single(0, 1);
    ARRAY<double> real(0, 1);
    const std::uint32_t single_bits = 0x7fa00000U;
    const std::uint64_t real_bits = 0x7ff4000000000000U;
    std::memcpy(single.Data(), &single_bits, sizeof single_bits);
    std::memcpy(real.Data(), &real_bits, sizeof real_bits);
    pool.Change("single", single);
    pool.Change("real", real);
    pool.Update();
    EXPECT_TRUE(std::isnan(pool.Get<ARRAY<float>>("single")[0]));
    EXPECT_TRUE(std::isnan(pool.Get<ARRAY<double>>("real")[0]));
}

TEST(PoolFormat, RefusesWhatItCanNotHold) {
    const POOL_FOLDER folder;
    const std::string path = folder.Make("a INT_32 1\n");
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    const std::string longest(1024 - std::strlen("a STR \"\""), 'x');
    ARRAY<STRING> texts(0, 1);
    for (const std::string& bad : {std::string("a\"b"), std::string("a\nb"), std::string("a\rb"), longest + "x"}) {
        EXPECT_THROW(pool.Change("a", bad), INVALID_PARAMETER_VALUE) << bad;
        EXPECT_THROW(pool.Change("a", STRING(bad)), INVALID_PARAMETER_VALUE) << bad;
        texts[0] = STRING(bad + "123456");
        EXPECT_THROW(pool.Change("a", texts), INVALID_PARAMETER_VALUE) << bad;
    }
    EXPECT_THROW(pool.Change("a", std::string("a\0b", 3)), INVALID_PARAMETER_VALUE);
    EXPECT_THROW(pool.Change(std::string(101, 'k'), 1), PARAMETER_KEY_TOO_LONG);
    for (const char* key : {"", "two words", "#a", "}", "\"a\"", "a\t", "a\n"}) {
        EXPECT_THROW(pool.Change(key, 1), ERROR_ARGUMENT) << key;
    }
    EXPECT_THROW(pool.Change("a", 1, {"two\nlines"}), ERROR_ARGUMENT);
    pool.Update();
    EXPECT_EQ(POOL_FOLDER::Content(path), "a INT_32 1\n");

    texts[0] = STRING(std::string(1024 - std::strlen("    \"\""), 'y'));
    pool.Change("a", longest);
    pool.Change("lines_of_full_length", texts);
    pool.Change(std::string(100, 'k'), 5);
    pool.Update();
    EXPECT_EQ(pool.Get<std::string>("a"), longest);
    EXPECT_EQ(pool.Get<ARRAY<STRING>>("lines_of_full_length")[0], texts[0]);
    EXPECT_EQ(pool.Get<int>(std::string(100, 'k')), 5);
}

TEST(PoolFormat, TheDocumentsExampleReads) {
    const std::string document = POOL_FOLDER::Content(VELMORA_SOURCE_DIR "/docs/pools.md");
    const std::size_t begin = document.find("```pool\n") + 8;
    ASSERT_NE(begin, std::string::npos + 8);
    const POOL_FOLDER folder;
    PARAMETER_POOL pool(folder.Make(document.substr(begin, document.find("```", begin) - begin)));
    EXPECT_EQ(pool.Get<int>("line_count"), 12000);
    EXPECT_EQ(pool.Get<double>("sampling_rate"), 1.0988e8);
    EXPECT_EQ(pool.Get<std::string>("channel_name"), "first channel");
    EXPECT_FALSE(pool.Get<bool>("use_mask"));
    EXPECT_EQ(pool.Get<TUPLE<STRING>>("window").second, STRING("2.5"));
    EXPECT_THAT(pool.Get<ARRAY<double>>("coefficients"), testing::ElementsAre(12.5, -0.03, 1.2e-6));
    const auto samples = pool.Get<ARRAY<COMPLEX<float>>>("samples");
    EXPECT_EQ(samples[-1], (COMPLEX<float>{0.5F, -1.0F}));
    EXPECT_EQ(samples[0].im, LIMITS<float>::max());
    EXPECT_EQ(pool.Get<MATRIX<short>>("weights")[1][2], -3);
}

TEST(PoolFormat, TheDocumentsTableNamesEveryType) {
    const std::string document = POOL_FOLDER::Content(VELMORA_SOURCE_DIR "/docs/pools.md");
    for (const auto& [number, tag] : kPoolTypes) {
        if (number == 0) continue;
        const std::string scalar_row = "| " + std::to_string(number) + " | " + tag + " |";
        const std::string block_cell = " " + std::to_string(number) + " " + tag + " |";
        EXPECT_THAT(document, testing::AnyOf(testing::HasSubstr(scalar_row), testing::HasSubstr(block_cell)));
    }
}

}  // namespace
