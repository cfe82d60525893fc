/// \file parse_number.h
/// The one way from text to number. The C library's strtod raises the overflow exception on "1e400", which ends a
/// program that runs with floating-point traps; these functions hold the traps back and report the range instead.
/// Leading white space and a sign are allowed, hexadecimal numbers are not. Locale: "C". Threads: no shared state.

#pragma once

#include <string>

enum class PARSE_RESULT {
    OK,
    NOT_A_NUMBER,         ///< no number at the start of the text
    TRAILING_CHARACTERS,  ///< a number, but the text goes on behind it
    OUT_OF_RANGE          ///< finite in the text, not in the type
};

/// The whole text as a real; "nan", "inf" and "infinity" in any case are reals. Results too small for a normal double
/// are rounded to a subnormal or zero. The value is changed only when the result is OK.
[[nodiscard]] PARSE_RESULT ParseReal(const std::string& text, double& value);

/// The same for a float.
[[nodiscard]] PARSE_RESULT ParseFloat(const std::string& text, float& value);

/// The whole text as an integer of base 10. The value is changed only when the result is OK.
[[nodiscard]] PARSE_RESULT ParseInteger(const std::string& text, long long& value);

/// The real at the start of the text; 0 when there is none or when it is out of range.
/// @param result OK, or TRAILING_CHARACTERS when the text goes on behind the number, or why 0 was returned
[[nodiscard]] double LeadingReal(const std::string& text, PARSE_RESULT& result);
