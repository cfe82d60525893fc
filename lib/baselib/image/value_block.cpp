#include "lib/baselib/image/value_block.h"

bool VELMORA_VECTOR_LEVEL::AllAreFinite(const float* values, int count) {
    constexpr unsigned kExponent = 0x7f800000;
    unsigned others = 0;
    for (int i = 0; i < count; ++i)
        others |= (__builtin_bit_cast(unsigned, values[i]) & kExponent) == kExponent ? 1U : 0U;
    return others == 0;
}

void VELMORA_VECTOR_LEVEL::AddValues(const float* __restrict values, int count, VALUE_LANES& lanes) {
    VALUE_LANES own = lanes;
    for (int i = 0; i < count; i += VALUE_LANES::kLanes) {
        for (int lane = 0; lane < VALUE_LANES::kLanes; ++lane) {
            const float value = values[i + lane];
            own.minimum[lane] = value < own.minimum[lane] ? value : own.minimum[lane];
            own.maximum[lane] = value > own.maximum[lane] ? value : own.maximum[lane];
            own.sum[lane] += static_cast<double>(value);
        }
    }
    lanes = own;
}
