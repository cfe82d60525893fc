#include "simulation/dem_blocks.h"

#include <cmath>

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

BLOCK_STEPS StepsOf(const DEM_GRID& dem, const DEM_RANGE& block) {
    float along_rows_m = 0.0F;
    float along_columns_m = 0.0F;
    const auto step = [](float a, float b) { return std::abs(a - b); };
    const auto larger = [](float a, float b) { return a > b ? a : b; };
    WithSamples(dem, [&](const auto& heights) {
        const int count = block.last_column - block.first_column;
        for (int row = block.first_row; row <= block.last_row; ++row) {
            const auto* const samples = heights[row] + block.first_column;
            const auto* const below = heights[std::min(row + 1, block.last_row)] + block.first_column;
            for (int i = 0; i < count; ++i)
                along_rows_m = larger(along_rows_m, step(HeightOf(samples[i + 1]), HeightOf(samples[i])));
            for (int i = 0; i <= count; ++i)
                along_columns_m = larger(along_columns_m, step(HeightOf(below[i]), HeightOf(samples[i])));
        }
    });
    return {along_rows_m, along_columns_m};
}
