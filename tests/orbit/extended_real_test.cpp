#include "orbit/interpolation/extended_real.h"

#include <gtest/gtest.h>

#include <random>

namespace {

__extension__ typedef __float128 QUADRUPLE;  // 113 bits

TEST(ExtendedReal, HasAHundredBits) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> digits(-1.0, 1.0);
    std::uniform_int_distribution<int> exponents(-30, 30);
    const auto error = [](const EXTENDED_REAL& value, QUADRUPLE expected) {
        const auto high = static_cast<double>(value);
        const auto low = static_cast<double>(value - high);
        const QUADRUPLE relative = (QUADRUPLE{high} + low - expected) / expected;
        return std::fabs(static_cast<double>(relative));
    };
    for (int i = 0; i < 10000; ++i) {
        double high[2];
        double low[2];
        for (int k = 0; k < 2; ++k) {
            high[k] = std::ldexp(digits(random), exponents(random));
            low[k] = std::ldexp(high[k] * digits(random), -54);
        }
        const EXTENDED_REAL a(high[0], low[0]);
        const EXTENDED_REAL b(high[1], low[1]);
        const QUADRUPLE x = QUADRUPLE{high[0]} + low[0];
        const QUADRUPLE y = QUADRUPLE{high[1]} + low[1];
        EXPECT_LE(error(a + b, x + y), 0x1p-100);
        EXPECT_LE(error(a - b, x - y), 0x1p-100);
        EXPECT_LE(error(a * b, x * y), 0x1p-103);
        EXPECT_LE(error(a / b, x / y), 0x1p-101);
    }
}

}  // namespace
