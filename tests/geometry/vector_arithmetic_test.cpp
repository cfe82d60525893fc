#include "geometry/vector_arithmetic.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/time/log_capture.h"

namespace {

TEST(Vector, ComputesElementByElement) {
    VECTOR<double> a = {1.0, 2.0, 3.0};
    const VECTOR<double> b = {4.0, -5.0, 0.5};
    EXPECT_EQ((a + b)[1], -3.0);
    EXPECT_EQ((a - b)[2], 2.5);
    EXPECT_EQ(DotProduct(a, b), -4.5);
    const VECTOR<double> cross = CrossProduct(a, b);
    EXPECT_EQ(cross[0], 2.0 * 0.5 - 3.0 * -5.0);
    EXPECT_EQ(cross[1], 3.0 * 4.0 - 1.0 * 0.5);
    EXPECT_EQ(cross[2], 1.0 * -5.0 - 2.0 * 4.0);
    a += b;
    a -= VECTOR<double>{1.0, 1.0, 1.0};
    a /= 1e-300;  // tiny, not zero
    EXPECT_EQ(a[0], 4.0 / 1e-300);
}

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
        {"DotProduct: vectors have different dimensions", [&] { (void)DotProduct(two, three); }},
    };
    for (const auto& c : cases) EXPECT_EQ(TextThrownBy(c.operation), c.text);
}

}  // namespace
