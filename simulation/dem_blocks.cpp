#include "simulation/dem_blocks.h"

#include <cmath>
#include <limits>

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
    float lowest_m = std::numeric_limits<float>::max();
    float highest_m = std::numeric_limits<float>::lowest();
    WithSamples(dem, [&](const auto& heights) {
        for (int row = block.first_row; row <= block.last_row; ++row) {
            for (int column = block.first_column; column <= block.last_column; ++column) {
                const float height_m = HeightOf(heights[row][column]);
                lowest_m = std::min(lowest_m, height_m);
                highest_m = std::max(highest_m, height_m);
            }
        }
    });
    return {lowest_m + dem.height_offset_m, highest_m + dem.height_offset_m};
}

BLOCK_STEPS StepsOf(const DEM_GRID& dem, const DEM_RANGE& block) {
    float along_rows_m = 0.0F;
    float along_columns_m = 0.0F;
    WithSamples(dem, [&](const auto& heights) {
        for (int row = block.first_row; row <= block.last_row; ++row) {
            const auto* const samples = heights[row];
            const auto* const below = heights[std::min(row + 1, block.last_row)];
            for (int column = block.first_column; column <= block.last_column; ++column) {
                const float height_m = HeightOf(samples[column]);
                const float right_m = HeightOf(samples[std::min(column + 1, block.last_column)]);
                along_rows_m = std::max(along_rows_m, std::abs(right_m - height_m));
                along_columns_m = std::max(along_columns_m, std::abs(HeightOf(below[column]) - height_m));
            }
        }
    });
    return {along_rows_m, along_columns_m};
}
