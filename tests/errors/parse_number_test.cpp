#include "lib/baselib/errors/parse_number.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>

namespace {

TEST(ParseReal, ReadsDecimalTextAndReportsWhatItIsNot) {
    const std::tuple<const char*, PARSE_RESULT, double> cases[] = {
        {"-1.5e-3", PARSE_RESULT::OK, -0.0015},
        {"4.9406564584124654e-324", PARSE_RESULT::OK, std::numeric_limits<double>::denorm_min()},
        {"infinity", PARSE_RESULT::OK, std::numeric_limits<double>::infinity()},
        {"-1e400", PARSE_RESULT::OUT_OF_RANGE, 0.0},
        {"", PARSE_RESULT::NOT_A_NUMBER, 0.0},
        {"0x10", PARSE_RESULT::TRAILING_CHARACTERS, 0.0},
    };
    for (const auto& [text, result, expected] : cases) {
        double value = 77.0;
        EXPECT_EQ(ParseReal(text, value), result) << text;
        EXPECT_EQ(value, result == PARSE_RESULT::OK ? expected : 77.0) << text;
    }
    double value = 0.0;
    EXPECT_EQ(ParseReal(std::string("1\0", 2), value), PARSE_RESULT::TRAILING_CHARACTERS) << "a zero byte ends nothing";
}

TEST(ParseReal, LeavesTrapsOnAndNoFlagBehind) {
    const int traps = fegetexcept();
    ASSERT_NE(traps & FE_OVERFLOW, 0) << "the test program must run with traps on";
    std::feclearexcept(FE_ALL_EXCEPT);
    double value = 0.0;
    EXPECT_EQ(ParseReal("1e999", value), PARSE_RESULT::OUT_OF_RANGE);
    EXPECT_EQ(ParseReal("nan", value), PARSE_RESULT::OK);
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(fegetexcept(), traps);
    EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
}

TEST(ParseFloat, EndsWhereNarrowingWouldRoundToInfinity) {
    float value = 77.0F;
    EXPECT_EQ(ParseFloat("3.4028235677973367e38", value), PARSE_RESULT::OUT_OF_RANGE);
    EXPECT_EQ(value, 77.0F);
    EXPECT_EQ(ParseFloat("3.4028235677973361e38", value), PARSE_RESULT::OK) << "just below half a unit more";
    EXPECT_EQ(value, std::numeric_limits<float>::max());
    EXPECT_EQ(ParseFloat("1.5 m", value), PARSE_RESULT::TRAILING_CHARACTERS);
    EXPECT_EQ(ParseFloat("-3.4028235677973367e38", value), PARSE_RESULT::OUT_OF_RANGE);
    EXPECT_EQ(ParseFloat("", value), PARSE_RESULT::NOT_A_NUMBER);
    EXPECT_EQ(value, std::numeric_limits<float>::max());
    EXPECT_EQ(ParseFloat("-inf", value), PARSE_RESULT::OK);
    EXPECT_EQ(value, -std::numeric_limits<float>::infinity());
}

TEST(ParseInteger, TakesTheWholeTextInBaseTen) {
    constexpr long long kLeast = std::numeric_limits<long long>::min();
    const std::tuple<const char*, PARSE_RESULT, long long> cases[] = {
        {"-9223372036854775808", PARSE_RESULT::OK, kLeast},
        {"-9223372036854775809", PARSE_RESULT::OUT_OF_RANGE, 77},
        {"9223372036854775808", PARSE_RESULT::OUT_OF_RANGE, 77},
        {"3.0", PARSE_RESULT::TRAILING_CHARACTERS, 77},
        {"0x10", PARSE_RESULT::TRAILING_CHARACTERS, 77},
        {"", PARSE_RESULT::NOT_A_NUMBER, 77},
        {"x", PARSE_RESULT::NOT_A_NUMBER, 77},
        {" +012", PARSE_RESULT::OK, 12}};
    for (const auto& [text, result, expected] : cases) {
        long long value = 77;
        EXPECT_EQ(ParseInteger(text, value), result) << text;
        EXPECT_EQ(value, expected) << text;
    }
}

TEST(LeadingReal, StopsAtTheFirstOtherCharacter) {
    const std::tuple<const char*, PARSE_RESULT, double> cases[] = {
        {"0.5..900", PARSE_RESULT::TRAILING_CHARACTERS, 0.5},
        {"x", PARSE_RESULT::NOT_A_NUMBER, 0.0},
        {"0x10", PARSE_RESULT::TRAILING_CHARACTERS, 0.0},
        {" -0X1p3", PARSE_RESULT::TRAILING_CHARACTERS, 0.0},
        {"\t+0x7", PARSE_RESULT::TRAILING_CHARACTERS, 0.0},
        {"1e999", PARSE_RESULT::OUT_OF_RANGE, 0.0},
        {"  10", PARSE_RESULT::OK, 10.0},
    };
    for (const auto& [text, expected, value] : cases) {
        PARSE_RESULT result;
        EXPECT_EQ(LeadingReal(text, result), value) << text;
        EXPECT_EQ(result, expected) << text;
    }
}

}  // namespace
