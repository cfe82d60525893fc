/// \file refusal.h
/// Refusing a value that would crash or mislead later: one line that names the file, the key, the value and what would
/// have been right, then the exception.

#pragma once

#include <string>

#include "app/keys/key_range.h"

/// Where a value came from: "configuration" or the path of a pool.
struct VALUE_SOURCE {
    std::string file;
    std::string key;
};

/// Logs at ALARM: FILE: key "KEY": value VALUE EXPLANATION.
/// @param explanation  for example "is not in 1..60"
void LogRefusal(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation);
/// The line alone, for a failure whose own line and exception have fixed texts: value "VALUE" is not RANGE.
void LogRefusedText(const VALUE_SOURCE& source, const std::string& text, const VALUE_RANGE& range);

/// LogRefusal, then the exception. @throws ERROR_PARAMETER always
[[noreturn]] void RefuseValue(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation);
[[noreturn]] void RefuseValue(const VALUE_SOURCE& source, double value, const std::string& explanation);

/// @throws ERROR_PARAMETER for a value outside the range, or that is not finite while the range is
void RequireInRange(const VALUE_SOURCE& source, double value, const VALUE_RANGE& range);
void RequireInRange(const VALUE_SOURCE& source, int value, const VALUE_RANGE& range);

/// The whole text as a finite real number of usable size.
/// @throws ERROR_ARGUMENT when it is none, after a line that names key and text
double RequiredReal(const VALUE_SOURCE& source, const std::string& text);

/// The whole text as a real number in single precision; nan and inf are such numbers.
/// @throws ERROR_ARGUMENT when it is none or exceeds the type's range, after a line that names key and text
float RequiredFloat(const VALUE_SOURCE& source, const std::string& text);

/// Refuses an empty text as the texts' own subscript does, after a line that names its key.
/// @throws std::out_of_range "subscript greater than string length"
void RequireText(const VALUE_SOURCE& source, const std::string& text, const VALUE_RANGE& range);
