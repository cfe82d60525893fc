/// \file refusal.h
/// Refusing a value that would crash or mislead later: one line that names the file, the key, the value and what would
/// have been right, then the exception.

#pragma once

#include <string>

/// Where a value came from: "configuration" or the path of a pool.
struct VALUE_SOURCE {
    std::string file;
    std::string key;
};

/// Logs at ALARM: FILE: key "KEY": value VALUE EXPLANATION.
/// @param explanation  for example "is outside 1..60"
/// @throws ERROR_PARAMETER always
[[noreturn]] void RefuseValue(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation);
[[noreturn]] void RefuseValue(const VALUE_SOURCE& source, double value, const std::string& explanation);

/// Bound of every quantity that is read: far beyond anything physical, near enough that products and ratios of a few
/// such values can not overflow (floating-point traps are on).
inline constexpr double kLargestQuantity = 1e30;

/// @throws ERROR_PARAMETER unless the value lies in 1/kLargestQuantity..kLargestQuantity
void RequirePositive(const VALUE_SOURCE& source, double value);
/// @throws ERROR_PARAMETER unless the value is finite and at most kLargestQuantity in magnitude
void RequireFinite(const VALUE_SOURCE& source, double value);

/// The whole text as a finite real number of at most kLargestQuantity in magnitude.
/// @throws ERROR_ARGUMENT when it is none, after a line that names key and text
double RequiredReal(const VALUE_SOURCE& source, const std::string& text);

/// Refuses an empty text as the texts' own subscript does.
/// @throws std::out_of_range "subscript greater than string length"
void RequireText(const std::string& text);

/// The whole text as a real number in single precision; nan and inf are such numbers.
/// @throws ERROR_ARGUMENT when it is none or exceeds the type's range, after a line that names key and text
float RequiredFloat(const VALUE_SOURCE& source, const std::string& text);
