/// \file valid_heights.h
/// DEM samples that can not be heights.

#pragma once

#include "app/keys/control_values.h"
#include "simulation/dem_sample.h"

struct VALID_HEIGHTS {
    float minimum_m = 0.0F;
    float maximum_m = 0.0F;

    [[nodiscard]] bool HasRange() const { return maximum_m > minimum_m; }

    /// Whether a height (DEM_GRID::Height) is a void or, when the maximum is above the minimum, outside the range.
    [[nodiscard]] bool Excludes(float height_m) const {
        return height_m == kDemVoid_m || (HasRange() && (height_m < minimum_m || height_m > maximum_m));
    }
};

/// "0..5000" gives 0 and 5000. Two dots end the minimum; what was collected since the last bound when the text ends,
/// possibly nothing (0), is the maximum. "<" opens a bracket; ">" closes it and stores a maximum as well, which the end
/// of the text then replaces: "<0..5000>" has the maximum 0, as it always had. The minimum is 0 without "..".
/// @throws ERROR_ARGUMENT for any other character or a bound outside the range of single precision
[[nodiscard]] VALID_HEIGHTS ParseValidHeights(const SOURCED_TEXT& range);

/// The same, logged; an empty text leaves the range unset.
[[nodiscard]] VALID_HEIGHTS ReadValidHeights(const SOURCED_TEXT& range);
