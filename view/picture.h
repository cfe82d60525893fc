/// \file picture.h
/// `velmora-view picture`: a product as a picture with a legend.

#pragma once

#include <optional>

#include "view/canvas.h"
#include "view/colouring.h"
#include "view/raster_file.h"

/// Longest side of a picture, legend included, pixels.
inline constexpr int kLongestSide = 1600;
/// Below, the legend would not fit.
inline constexpr int kShortestLongestSide = 480;

/// The product, averaged down by a whole number where it is larger, above its title, colour bar, scale and unit.
/// @param kind     null: not known
/// @param longest  of its sides, legend included
/// @param invalid  a further value that stands for no value
[[nodiscard]] CANVAS DrawPicture(const RASTER_FILE& raster, const PRODUCT_KIND* kind, int longest,
                                 std::optional<double> invalid);

/// How a product's pixels are brought together.
[[nodiscard]] AVERAGE AverageFor(const PRODUCT_KIND* kind);
