/// \file flag_colours.h
/// Colours of the bits of layover and shadow, and what they mean.

#pragma once

#include <span>
#include <vector>

#include "view/colour_tables.h"
#include "view/value_grid.h"

struct FLAG_CLASS {
    const char* name;
    COLOUR colour;
};

/// In the order of a legend.
[[nodiscard]] std::span<const FLAG_CLASS> FlagClasses();

/// The master's bits decide, then the slave's. Grey where there is no value.
[[nodiscard]] std::vector<COLOUR> FlagColours(const VALUE_GRID& grid);
