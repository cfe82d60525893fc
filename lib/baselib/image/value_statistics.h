/// \file value_statistics.h
/// Smallest, largest and mean value of pixels as they go by. Values that are not finite do not count; they are told by
/// their bits, since a comparison with them would end a program that has floating-point traps on.
/// Threads: plain values; sums of parts differ in the last bits with their order.

#pragma once

#include <limits>

#include "lib/baselib/vectors/vector_level.h"

class VALUE_STATISTICS {
  public:
    void Add(const float* values, long long count);
    void Add(const unsigned char* values, long long count);
    void Add(const VALUE_STATISTICS& part);

    /// How many values counted; without any the others are 0.
    [[nodiscard]] long long Count() const { return count_; }
    [[nodiscard]] float Minimum() const { return count_ == 0 ? 0.0F : minimum_; }
    [[nodiscard]] float Maximum() const { return count_ == 0 ? 0.0F : maximum_; }
    [[nodiscard]] double Mean() const { return count_ == 0 ? 0.0 : sum_ / static_cast<double>(count_); }

  private:
    void AddFinite(const float* values, int count, VECTOR_LEVEL level);

    float minimum_ = std::numeric_limits<float>::max();
    float maximum_ = std::numeric_limits<float>::lowest();
    long long count_ = 0;
    double sum_ = 0.0;
};
