#include "simulation/dem_blocks.h"

#include <algorithm>

namespace {

/// Calls look_at with the samples, of whichever kind.
template <class LOOK_AT>
void WithSamples(const DEM_GRID& dem, LOOK_AT look_at) {
    if (dem.real_heights)
        look_at(dem.real_heights);
    else
        look_at(dem.heights);
}

}  // namespace

BLOCK_HEIGHTS HeightsOf(const DEM_GRID& dem, const DEM_RANGE& block) {
    BLOCK_HEIGHTS found{};
    WithSamples(dem, [&](const auto& heights) {
        auto lowest_m = HeightOf(heights[block.first_row][block.first_column]);
        auto highest_m = lowest_m;
        const int count = block.last_column - block.first_column + 1;
        for (int row = block.first_row; row <= block.last_row; ++row) {
            const auto* const samples = heights[row] + block.first_column;
            for (int i = 0; i < count; ++i) {
                const auto height_m = HeightOf(samples[i]);
                lowest_m = height_m < lowest_m ? height_m : lowest_m;
                highest_m = height_m > highest_m ? height_m : highest_m;
            }
        }
        found = {lowest_m + dem.height_offset_m, highest_m + dem.height_offset_m};
    });
    return found;
}

/// Steps of 16-bit samples are whole numbers, which the compiler takes several at a time.
BLOCK_STEPS StepsOf(const DEM_GRID& dem, const DEM_RANGE& block) {
    BLOCK_STEPS found{};
    WithSamples(dem, [&](const auto& heights) {
        decltype(HeightOf(heights[0][0]) - HeightOf(heights[0][0])) along_rows_m{};
        decltype(along_rows_m) along_columns_m{};
        const auto take = [](auto step_m, auto& largest_m) {
            step_m = step_m < 0 ? -step_m : step_m;
            largest_m = step_m > largest_m ? step_m : largest_m;
        };
        const int count = block.last_column - block.first_column;
        for (int row = block.first_row; row <= block.last_row; ++row) {
            const auto* const samples = heights[row] + block.first_column;
            const auto* const below = heights[std::min(row + 1, block.last_row)] + block.first_column;
            for (int i = 0; i < count; ++i) take(HeightOf(samples[i + 1]) - HeightOf(samples[i]), along_rows_m);
            for (int i = 0; i <= count; ++i) take(HeightOf(below[i]) - HeightOf(samples[i]), along_columns_m);
        }
        found = {static_cast<double>(along_rows_m), static_cast<double>(along_columns_m)};
    });
    return found;
}
