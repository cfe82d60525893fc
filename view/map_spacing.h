/// \file map_spacing.h
/// How far apart the pixels of the map shall be.

#pragma once

#include "view/earth_positions.h"

struct MAP_SPACING {
    double longitude_deg = 0.0;
    double latitude_deg = 0.0;
};

/// Positions per product pixel, along columns and rows.
struct PIXEL_STEPS {
    double columns = 1.0;
    double rows = 1.0;
};

/// The same length on the ground in both directions: the finer of the product's mean spacings in range and azimuth, but
/// so that the map has at most four times the product's pixels.
/// @param positions       at least 2 x 2
/// @param product_pixels  columns x rows of the product
[[nodiscard]] MAP_SPACING MapSpacing(const EARTH_POSITIONS& positions, const PIXEL_STEPS& steps, double product_pixels);
