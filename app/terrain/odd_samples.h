/// \file odd_samples.h
/// DEM samples that are no heights of any land, and what they look like: a DEM in the other byte order, or with an
/// unexpected mark of missing heights, passes for terrain otherwise.

#pragma once

#include <string>

#include "simulation/scene.h"

/// Metres: the shores of the Dead Sea lie at -430, the highest mountain at 8849.
inline constexpr float kLowestLand_m = -500.0F;
inline constexpr float kHighestLand_m = 9000.0F;

[[nodiscard]] inline bool IsOdd(float height_m) {
    return height_m < kLowestLand_m || height_m > kHighestLand_m;
}

struct ODD_SAMPLES {
    long long count = 0;
    DEM_RANGE box{};  ///< around them; only with a count

    void Add(int row, int column);
};

/// In words: the other byte order, where most samples that are no mark of a missing height would then be heights, more
/// than are as they stand; else the value that more than half of the odd ones have.
/// @param simulated  where the samples were counted
[[nodiscard]] std::string Appearance(const DEM_GRID& dem, const DEM_RANGE& simulated, const ODD_SAMPLES& odd);
