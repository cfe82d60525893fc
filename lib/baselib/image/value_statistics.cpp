#include "lib/baselib/image/value_statistics.h"

#include <algorithm>
#include <cstring>

#include "lib/baselib/image/value_block.h"

namespace {

/// Values at a time: they stay in the processor's nearest cache between the look at their bits and the sums.
constexpr long long kBlock = 2048;

float Smaller(float a, float b) {
    return b < a ? b : a;
}

float Larger(float a, float b) {
    return b > a ? b : a;
}

}  // namespace

void VALUE_STATISTICS::AddFinite(const float* values, int count, VECTOR_LEVEL level) {
    constexpr int kLanes = VALUE_LANES::kLanes;
    VALUE_LANES lanes{};
    std::fill_n(lanes.minimum, kLanes, minimum_);
    std::fill_n(lanes.maximum, kLanes, maximum_);
    const int in_lanes = count - count % kLanes;
    VELMORA_AT_LEVEL(level, AddValues)(values, in_lanes, lanes);
    for (int i = in_lanes; i < count; ++i) {
        lanes.minimum[0] = Smaller(lanes.minimum[0], values[i]);
        lanes.maximum[0] = Larger(lanes.maximum[0], values[i]);
        lanes.sum[0] += static_cast<double>(values[i]);
    }
    for (int lane = 0; lane < kLanes; ++lane) {
        minimum_ = Smaller(minimum_, lanes.minimum[lane]);
        maximum_ = Larger(maximum_, lanes.maximum[lane]);
        sum_ += lanes.sum[lane];
    }
    count_ += count;
}

void VALUE_STATISTICS::Add(const float* values, long long count) {
    const VECTOR_LEVEL level = ChosenVectorLevel();
    const auto all_are_finite = VELMORA_AT_LEVEL(level, AllAreFinite);
    for (long long first = 0; first < count; first += kBlock) {
        const float* const block = values + first;
        const int size = static_cast<int>(std::min(kBlock, count - first));
        if (all_are_finite(block, size)) {
            AddFinite(block, size, level);
            continue;
        }
        for (int i = 0; i < size; ++i)
            if (all_are_finite(block + i, 1)) AddFinite(block + i, 1, level);
    }
}

void VALUE_STATISTICS::Add(const unsigned char* values, long long count) {
    constexpr long long kAtOnce = 1 << 16;  // their sum fits
    for (long long first = 0; first < count; first += kAtOnce) {
        const unsigned char* const block = values + first;
        const int size = static_cast<int>(std::min(kAtOnce, count - first));
        unsigned char minimum = block[0];
        unsigned char maximum = block[0];
        auto sum = static_cast<unsigned>(size) * block[0];
        if (std::memcmp(block, block + 1, static_cast<std::size_t>(size) - 1) != 0) {  // most have one value only
            sum = 0;
            for (int i = 0; i < size; ++i) minimum = std::min(minimum, block[i]);
            for (int i = 0; i < size; ++i) maximum = std::max(maximum, block[i]);
            for (int i = 0; i < size; ++i) sum += block[i];
        }
        minimum_ = Smaller(minimum_, minimum);
        maximum_ = Larger(maximum_, maximum);
        sum_ += sum;
    }
    count_ += count;
}

void VALUE_STATISTICS::Add(const VALUE_STATISTICS& part) {
    minimum_ = Smaller(minimum_, part.minimum_);
    maximum_ = Larger(maximum_, part.maximum_);
    count_ += part.count_;
    sum_ += part.sum_;
}
