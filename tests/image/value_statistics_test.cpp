#include "lib/baselib/image/value_statistics.h"

#include <fenv.h>
#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace {

TEST(ValueStatistics, CountsFiniteValuesOnlyAndRaisesNoTrap) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kQuiet = std::numeric_limits<float>::quiet_NaN();
    constexpr float kSignaling = std::numeric_limits<float>::signaling_NaN();
    const struct {
        const char* name;
        std::vector<float> strange;  ///< at a place among the numbers 1 .. 5000
        float first;
        float minimum, maximum;
        long long count;
    } cases[] = {
        {"numbers alone", {}, 1.0F, 1.0F, 5000.0F, 5000},
        {"below zero", {}, -6000.0F, -6000.0F, -1001.0F, 5000},
        {"none that counts", {kQuiet, kSignaling, kInfinity, -kInfinity}, 1.0F, 1.0F, 5000.0F, 5000},
    };
    feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const std::size_t place : {0U, 3U, 2047U, 2048U, 4999U}) {
            std::vector<float> values;
            for (int i = 0; i < 5000; ++i) values.push_back(c.first + static_cast<float>(i));
            values.insert(values.begin() + static_cast<long>(place), c.strange.begin(), c.strange.end());
            VALUE_STATISTICS whole;
            whole.Add(values.data(), std::ssize(values));
            VALUE_STATISTICS parts;
            for (const auto& [from, to] : {std::pair{0L, 13L}, {13L, 13L}, {13L, std::ssize(values)}}) {
                VALUE_STATISTICS part;
                part.Add(values.data() + from, to - from);
                parts.Add(part);
            }
            for (const VALUE_STATISTICS& statistics : {whole, parts}) {
                EXPECT_EQ(statistics.Minimum(), c.minimum);
                EXPECT_EQ(statistics.Maximum(), c.maximum);
                EXPECT_EQ(statistics.Count(), c.count);
                EXPECT_DOUBLE_EQ(statistics.Mean(), 0.5 * (c.minimum + c.maximum));
            }
        }
    }
    VALUE_STATISTICS none;
    none.Add(&kSignaling, 1);
    EXPECT_EQ(none.Count(), 0);
    EXPECT_EQ(none.Minimum(), 0.0F);
    EXPECT_EQ(none.Mean(), 0.0);
    fedisableexcept(FE_ALL_EXCEPT);
}

TEST(ValueStatistics, OfBytesAreThoseOfNumbers) {
    for (const int size : {1, 2, 65535, 65536, 65537, 200000}) {
        for (const int steps : {1, 250}) {  // one value only; all but a few
            for (const int place : {0, size / 2, size - 1}) {
                std::vector<unsigned char> bytes;
                for (int i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(255 - i % steps));
                bytes[static_cast<std::size_t>(place)] = 3;
                const std::vector<float> numbers(bytes.begin(), bytes.end());
                VALUE_STATISTICS of_bytes;
                VALUE_STATISTICS of_numbers;
                for (int twice = 0; twice < 2; ++twice) of_bytes.Add(bytes.data(), size);
                for (int twice = 0; twice < 2; ++twice) of_numbers.Add(numbers.data(), size);
                EXPECT_EQ(of_bytes.Minimum(), 3.0F);
                EXPECT_EQ(of_bytes.Maximum(), of_numbers.Maximum());
                EXPECT_EQ(of_bytes.Count(), 2 * size);
                EXPECT_DOUBLE_EQ(of_bytes.Mean(), of_numbers.Mean());
            }
        }
    }
}

}  // namespace
