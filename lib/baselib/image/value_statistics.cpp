#include "lib/baselib/image/value_statistics.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace {

/// Values at a time: they stay in the processor's nearest cache between the look at their bits and the sums.
constexpr long long kBlock = 2048;

/// A signalling NaN would trap in std::isfinite already.
bool AllAreFinite(const float* values, int count) {
    constexpr std::uint32_t kExponent = 0x7f800000;
    std::uint32_t others = 0;
    for (int i = 0; i < count; ++i)
        others |= (std::bit_cast<std::uint32_t>(values[i]) & kExponent) == kExponent ? 1U : 0U;
    return others == 0;
}

float Smaller(float a, float b) {
    return b < a ? b : a;
}

float Larger(float a, float b) {
    return b > a ? b : a;
}

}  // namespace

void VALUE_STATISTICS::AddFinite(const float* values, int count) {
    // Several of each: the processor takes them in one instruction, and no sum waits for the one before.
    constexpr int kLanes = 8;
    float minimum[kLanes];
    float maximum[kLanes];
    double sum[kLanes] = {};
    std::fill_n(minimum, kLanes, minimum_);
    std::fill_n(maximum, kLanes, maximum_);
    const int in_lanes = count - count % kLanes;
    for (int i = 0; i < in_lanes; i += kLanes) {
        for (int lane = 0; lane < kLanes; ++lane) {
            const float value = values[i + lane];
            minimum[lane] = Smaller(minimum[lane], value);
            maximum[lane] = Larger(maximum[lane], value);
            sum[lane] += static_cast<double>(value);
        }
    }
    for (int i = in_lanes; i < count; ++i) {
        minimum[0] = Smaller(minimum[0], values[i]);
        maximum[0] = Larger(maximum[0], values[i]);
        sum[0] += static_cast<double>(values[i]);
    }
    for (int lane = 0; lane < kLanes; ++lane) {
        minimum_ = Smaller(minimum_, minimum[lane]);
        maximum_ = Larger(maximum_, maximum[lane]);
        sum_ += sum[lane];
    }
    count_ += count;
}

void VALUE_STATISTICS::Add(const float* values, long long count) {
    for (long long first = 0; first < count; first += kBlock) {
        const float* const block = values + first;
        const int size = static_cast<int>(std::min(kBlock, count - first));
        if (AllAreFinite(block, size)) {
            AddFinite(block, size);
            continue;
        }
        for (int i = 0; i < size; ++i)
            if (AllAreFinite(block + i, 1)) AddFinite(block + i, 1);
    }
}

void VALUE_STATISTICS::Add(const VALUE_STATISTICS& part) {
    minimum_ = Smaller(minimum_, part.minimum_);
    maximum_ = Larger(maximum_, part.maximum_);
    count_ += part.count_;
    sum_ += part.sum_;
}
