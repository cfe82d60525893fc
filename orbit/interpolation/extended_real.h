/// \file extended_real.h
/// Real numbers of about 106 bits as unevaluated sums of two doubles. For the few places where an orbit's coefficients
/// are prepared: the compiler's extended type has 64 bits on one machine and 113 on another, and products shall not
/// depend on that. Range: that of double. Every operation is a fixed sequence of rounded ones, so results are the same
/// on every machine (which needs -ffp-contract=off). Relative errors: 2^-104 of sums and products, 2^-102 of quotients.
/// Source: T. J. Dekker, A floating-point technique for extending the available precision, Numerische Mathematik 18
/// (1971); products by fused multiply-add.

#pragma once

#include <cmath>

class EXTENDED_REAL {
  public:
    constexpr EXTENDED_REAL(double value = 0.0) : high_(value) {}
    /// @param low  not above half an ulp of high
    constexpr EXTENDED_REAL(double high, double low) : high_(high), low_(low) {}

    explicit operator double() const { return high_; }

    friend EXTENDED_REAL operator+(const EXTENDED_REAL& a, const EXTENDED_REAL& b) {
        const EXTENDED_REAL high = Sum(a.high_, b.high_);
        const EXTENDED_REAL low = Sum(a.low_, b.low_);
        const EXTENDED_REAL sum = Joined(high.high_, high.low_ + low.high_);
        return Joined(sum.high_, sum.low_ + low.low_);
    }
    friend EXTENDED_REAL operator-(const EXTENDED_REAL& a) { return {-a.high_, -a.low_}; }
    friend EXTENDED_REAL operator-(const EXTENDED_REAL& a, const EXTENDED_REAL& b) { return a + -b; }
    friend EXTENDED_REAL operator*(const EXTENDED_REAL& a, const EXTENDED_REAL& b) {
        const double product = a.high_ * b.high_;
        const double error = std::fma(a.high_, b.high_, -product);
        return Joined(product, error + (a.high_ * b.low_ + a.low_ * b.high_));
    }
    /// Long division, three digits to the base 2^53.
    friend EXTENDED_REAL operator/(const EXTENDED_REAL& a, const EXTENDED_REAL& b) {
        const double first = a.high_ / b.high_;
        const EXTENDED_REAL rest = a - b * first;
        const double second = rest.high_ / b.high_;
        const double third = (rest - b * second).high_ / b.high_;
        return Joined(first, second) + third;
    }
    EXTENDED_REAL& operator+=(const EXTENDED_REAL& other) { return *this = *this + other; }
    EXTENDED_REAL& operator-=(const EXTENDED_REAL& other) { return *this = *this - other; }
    EXTENDED_REAL& operator*=(const EXTENDED_REAL& other) { return *this = *this * other; }
    EXTENDED_REAL& operator/=(const EXTENDED_REAL& other) { return *this = *this / other; }

  private:
    /// a + b without error.
    static EXTENDED_REAL Sum(double a, double b) {
        const double sum = a + b;
        const double part_of_b = sum - a;
        return {sum, (a - (sum - part_of_b)) + (b - part_of_b)};
    }
    /// The same where a is not smaller than b.
    static EXTENDED_REAL Joined(double a, double b) {
        const double sum = a + b;
        return {sum, b - (sum - a)};
    }

    double high_;
    double low_ = 0.0;
};

/// Rounded to a double.
[[nodiscard]] inline double Magnitude(const EXTENDED_REAL& value) {
    return std::fabs(static_cast<double>(value));
}
