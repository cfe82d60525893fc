#include "lib/baselib/image/value_block.h"

#include "lib/baselib/vectors/eight_lanes.h"

namespace {

constexpr int kGroups = VALUE_LANES::kLanes / kLanes;

}  // namespace

bool VELMORA_VECTOR_LEVEL::AllAreFinite(const float* values, int count) {
    constexpr unsigned kExponent = 0x7f800000;
    unsigned others = 0;
    for (int i = 0; i < count; ++i)
        others |= (__builtin_bit_cast(unsigned, values[i]) & kExponent) == kExponent ? 1U : 0U;
    return others == 0;
}

/// In eights by hand: left to itself the compiler takes the values one by one.
void VELMORA_VECTOR_LEVEL::AddValues(const float* values, int count, VALUE_LANES& lanes) {
    EIGHT_FLOATS minimum[kGroups];
    EIGHT_FLOATS maximum[kGroups];
    EIGHT_DOUBLES sum[kGroups];
    for (int g = 0; g < kGroups; ++g) {
        minimum[g] = Load(lanes.minimum + g * kLanes);
        maximum[g] = Load(lanes.maximum + g * kLanes);
        sum[g] = Load(lanes.sum + g * kLanes);
    }
    for (int i = 0; i < count; i += VALUE_LANES::kLanes) {
#pragma GCC unroll 2
        for (int g = 0; g < kGroups; ++g) {
            const EIGHT_FLOATS value = Load(values + i + g * kLanes);
            minimum[g] = Smaller(value, minimum[g]);
            maximum[g] = Larger(value, maximum[g]);
            sum[g] = sum[g] + Widened(value);
        }
    }
    for (int g = 0; g < kGroups; ++g) {
        std::memcpy(lanes.minimum + g * kLanes, &minimum[g], sizeof minimum[g]);
        std::memcpy(lanes.maximum + g * kLanes, &maximum[g], sizeof maximum[g]);
        std::memcpy(lanes.sum + g * kLanes, &sum[g], sizeof sum[g]);
    }
}
