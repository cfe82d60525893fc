/// \file value_grid.h
/// A product averaged down to the size of a picture.

#pragma once

#include <optional>
#include <vector>

#include "view/raster_file.h"

struct VALUE_GRID {
    int columns = 0;
    int rows = 0;
    std::vector<float> values;  ///< row by row; NaN: no value

    [[nodiscard]] float At(int column, int row) const {
        return values[static_cast<std::size_t>(row) * columns + column];
    }
};

enum class AVERAGE {
    MEAN,   ///< of the values that are there
    PHASE,  ///< angle of the mean of exp(i phase), 0..2 pi: fringes do not smear where the phase wraps
    BITS    ///< all bits of whole numbers 0..255: what is there in any pixel stays to be seen
};

/// Blocks of factor x factor pixels become one, those at the far edges from what is left of them.
/// @param factor   at least 1
/// @param invalid  a further value that stands for no value
[[nodiscard]] VALUE_GRID AverageDown(const RASTER_FILE& raster, int factor, AVERAGE average,
                                     std::optional<double> invalid);

struct VALUE_RANGE {
    double low;
    double high;
};

/// Smallest and largest value, or nothing when there is none.
[[nodiscard]] std::optional<VALUE_RANGE> RangeOf(const VALUE_GRID& grid);
