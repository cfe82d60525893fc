#include "geometry/vector_arithmetic.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/kit/log_capture.h"

namespace {

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
