#include "geometry/vector_arithmetic.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

#include "tests/kit/log_capture.h"

namespace {

/// A number that takes memory, of which there is none.
struct LARGE_NUMBER {
    LARGE_NUMBER operator*(const LARGE_NUMBER&) const { throw ERROR_NO_MEMORY(); }
    LARGE_NUMBER operator-(const LARGE_NUMBER&) const { return {}; }
};

TEST(Vector, RefusesWithItsTexts) {
    VECTOR<double> two = {1.0, 2.0};
    const VECTOR<double> three = {1.0, 2.0, 3.0};
    const struct {
        const char* text;
        std::function<void()> operation;
    } cases[] = {
        {"VECTOR operator + : vectors have different dimensions", [&] { (void)(two + three); }},
        {"VECTOR operator += : vectors have different dimensions", [&] { two += three; }},
        {"VECTOR operator - : vectors have different dimensions", [&] { (void)(two - three); }},
        {"VECTOR operator -= : vectors have different dimensions", [&] { two -= three; }},
        {"VECTOR operator /= : division by 0.0", [&] { two /= 0.0; }},
        {"CrossProduct: vector a has not dimension of 3", [&] { (void)CrossProduct(two, two); }},
        {"CrossProduct: vector b has not dimension of 3", [&] { (void)CrossProduct(three, two); }},
        {"CrossProduct: can not allocate vector memory",
         [] { (void)CrossProduct(VECTOR<LARGE_NUMBER>(3), VECTOR<LARGE_NUMBER>(3)); }},
        {"DotProduct: vectors have different dimensions", [&] { (void)DotProduct(two, three); }},
    };
    for (const auto& c : cases) EXPECT_EQ(TextThrownBy(c.operation), c.text);
}

TEST(Vector, ComputesComponentByComponent) {
    const VECTOR<double> a = {1.0, -2.0, 5.0};
    const VECTOR<double> b = {4.0, 3.0, -7.0};
    VECTOR<double> sum = a;
    sum += b;
    VECTOR<double> difference = a;
    difference -= b;
    VECTOR<double> quotient = b;
    quotient /= 2.0;
    const std::pair<VECTOR<double>, std::vector<double>> cases[] = {
        {a + b, {5.0, 1.0, -2.0}},        {sum, {5.0, 1.0, -2.0}},      {a - b, {-3.0, -5.0, 12.0}},
        {difference, {-3.0, -5.0, 12.0}}, {quotient, {2.0, 1.5, -3.5}}, {CrossProduct(a, b), {-1.0, 27.0, 11.0}},
    };
    for (const auto& [result, expected] : cases) {
        for (int i = 0; i < 3; ++i) EXPECT_EQ(result[i], expected[static_cast<size_t>(i)]);
    }
    EXPECT_EQ(DotProduct(a, b), -37.0);
    const VECTOR_3D<double> c = CrossProduct(VECTOR_3D<double>{1.0, -2.0, 5.0}, VECTOR_3D<double>{4.0, 3.0, -7.0});
    EXPECT_EQ((std::array{c.x, c.y, c.z}), (std::array{-1.0, 27.0, 11.0}));
    EXPECT_EQ(Length(VECTOR_3D<double>{2.0, -3.0, 6.0}), 7.0);
}

}  // namespace
