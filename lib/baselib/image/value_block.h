/// \file value_block.h
/// A look at many values at once, compiled once per vector level.

#pragma once

#include "lib/baselib/vectors/vector_level.h"

/// Several of each: the processor takes them in one instruction, and no sum waits for the one before.
struct VALUE_LANES {
    static constexpr int kLanes = 16;
    float minimum[kLanes];
    float maximum[kLanes];
    double sum[kLanes];
};

/// Told by their bits: a signalling NaN would trap in any comparison.
VELMORA_AT_EVERY_LEVEL(bool AllAreFinite(const float* values, int count))

/// @param count  of finite values, a multiple of the lanes
VELMORA_AT_EVERY_LEVEL(void AddValues(const float* values, int count, VALUE_LANES& lanes))
