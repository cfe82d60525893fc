/// \file dem_sample.h
/// The stored samples of a DEM as heights in metres: 16-bit integers, or 32-bit reals.

#pragma once

#include <cstdint>

/// The customary mark of a missing height.
inline constexpr short kDemVoid_m = -32768;

[[nodiscard]] [[gnu::always_inline]] inline short HeightOf(short sample_m) {
    return sample_m;
}

/// A sample that is no number, or beyond the heights that 16 bits hold (infinite ones, and marks like -3.4e38), is a
/// void. Told from the bits: with floating-point traps on, even comparing a NaN would end the run. The builtin, since
/// std::bit_cast would be emitted once per vector level (cmake/velmora_vectors.cmake).
[[nodiscard]] [[gnu::always_inline]] inline float HeightOf(float sample_m) {
    constexpr std::uint32_t kMagnitude = 0x7fffffffU;
    constexpr std::uint32_t kBound = __builtin_bit_cast(std::uint32_t, 32768.0F);
    constexpr std::uint32_t kVoid = __builtin_bit_cast(std::uint32_t, float{kDemVoid_m});
    const auto bits = __builtin_bit_cast(std::uint32_t, sample_m);
    return __builtin_bit_cast(float, (bits & kMagnitude) <= kBound ? bits : kVoid);
}
