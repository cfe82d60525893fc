/// \file colouring.h
/// From values to colours: which table a product gets, over which range, and the shade of heights.

#pragma once

#include <vector>

#include "lib/baselib/sidecar/product_kind.h"
#include "view/colour_tables.h"
#include "view/value_grid.h"

struct COLOURING {
    TABLE table = TABLE::SEQUENTIAL;
    VALUE_RANGE range{};       ///< values at the table's ends
    bool has_classes = false;  ///< bits of layover and shadow: no table, no range
    bool shaded = false;       ///< light from the upper left, slopes scaled so that the typical one stands out
};

/// Phase: cyclic over 0..2 pi. Height and terrain models: shaded. Coordinates less offset, and shifts of both signs:
/// diverging, the middle at 0. Everything else: sequential from the smallest to the largest value.
/// @param kind  null: not known
[[nodiscard]] COLOURING ColouringFor(const PRODUCT_KIND* kind, PIXEL_TYPE pixel_type, const VALUE_GRID& grid);

/// One colour per value, grey where there is none.
[[nodiscard]] std::vector<COLOUR> Colours(const VALUE_GRID& grid, const COLOURING& colouring);
