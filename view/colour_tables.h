/// \file colour_tables.h
/// The project's own colour tables, drawn as lines through a colour space in which equal steps look equal.
/// Source of the space: B. Ottosson (2020), A perceptual color space for image processing.

#pragma once

#include <array>
#include <cstdint>

struct COLOUR {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

enum class TABLE {
    CYCLIC,      ///< a circle of hues of one lightness: the end is the beginning
    SEQUENTIAL,  ///< dark to light
    DIVERGING,   ///< blue, white in the middle, red
    TERRAIN      ///< green lowlands, brown slopes, white tops
};

inline constexpr int kTableSize = 256;
using COLOUR_TABLE = std::array<COLOUR, kTableSize>;

[[nodiscard]] const COLOUR_TABLE& ColourTable(TABLE table);

/// What stands for no value.
inline constexpr COLOUR kGrey{128, 128, 128};
