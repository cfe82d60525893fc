/// \file key_range.h
/// The values that a key may have.

#pragma once

#include <limits>

/// Bound of every quantity that is read: far beyond anything physical, near enough that products and ratios of a few
/// such values can not overflow (floating-point traps are on).
inline constexpr double kLargestQuantity = 1e30;

/// The text continues "value 61 is not ...", in refusals as in the documentation. Bounds are inclusive; those of texts
/// are not looked at.
struct VALUE_RANGE {
    double lowest;
    double highest;
    const char* text;
};

/// Values that are taken as they are.
inline constexpr VALUE_RANGE kAnything{std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max(), ""};
inline constexpr VALUE_RANGE kFinite{-kLargestQuantity, kLargestQuantity, "a finite number of usable size"};
inline constexpr VALUE_RANGE kPositive{1.0 / kLargestQuantity, kLargestQuantity, "above 0"};
inline constexpr VALUE_RANGE kFromOne{1.0, kLargestQuantity, "1 or more"};
inline constexpr VALUE_RANGE kNotNegative{0.0, kLargestQuantity, "0 or more"};

/// The range of a text that is one of a few.
constexpr VALUE_RANGE OneOf(const char* texts) {
    return {kAnything.lowest, kAnything.highest, texts};
}
