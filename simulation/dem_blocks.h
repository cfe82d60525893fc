/// \file dem_blocks.h
/// The cells of a DEM in square blocks, so that what varies slowly is asked once per block, not per sample.

#pragma once

#include <algorithm>

#include "simulation/scene.h"

class DEM_BLOCKS {
  public:
    static constexpr int kSize = 16;  ///< cells, both ways

    explicit DEM_BLOCKS(const DEM_RANGE& range) : range_(range) {}

    [[nodiscard]] const DEM_RANGE& Range() const { return range_; }
    [[nodiscard]] int Rows() const { return Count(range_.last_row - range_.first_row); }
    [[nodiscard]] int Columns() const { return Count(range_.last_column - range_.first_column); }

    /// Samples of a block, its far corners included.
    [[nodiscard]] DEM_RANGE Samples(int block_row, int block_column) const {
        const int row = range_.first_row + block_row * kSize;
        const int column = range_.first_column + block_column * kSize;
        return {row, std::min(row + kSize, range_.last_row), column, std::min(column + kSize, range_.last_column)};
    }

  private:
    static int Count(int cells) { return (cells + kSize - 1) / kSize; }

    DEM_RANGE range_;
};

/// Heights of a block, offset included, metres.
struct BLOCK_HEIGHTS {
    double lowest_m;
    double highest_m;
};
[[nodiscard]] BLOCK_HEIGHTS HeightsOf(const DEM_GRID& dem, const DEM_RANGE& block);

/// Greatest differences between neighbouring samples of a block, metres.
struct BLOCK_STEPS {
    double along_rows_m;
    double along_columns_m;
};
[[nodiscard]] BLOCK_STEPS StepsOf(const DEM_GRID& dem, const DEM_RANGE& block);
