/// \file companion_error.h
/// How a companion program says no: one message that names the file, the place in it, the value and what was expected.

#pragma once

#include <stdexcept>
#include <string>

/// Ends the command with exit status 1; the message goes to standard error as it is.
class COMPANION_ERROR : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Where a value stands: the file, and the line, element or key in it ("line 12", "element product/adsHeader/mode").
struct VALUE_PLACE {
    std::string file;
    std::string where;
};

/// FILE: WHERE: value "VALUE": expected EXPECTED
/// Control bytes of the value are shown as \xNN, and more than 80 characters of it are cut.
[[noreturn]] void RefuseValue(const VALUE_PLACE& place, const std::string& value, const std::string& expected);

/// The value with its control bytes shown, cut, in double quotes.
[[nodiscard]] std::string Quoted(const std::string& value);

/// The whole text (blanks around it allowed) as a finite real number of at most 1e30 in magnitude.
/// @throws COMPANION_ERROR
[[nodiscard]] double RealOf(const VALUE_PLACE& place, const std::string& text);

/// The same for an integer between the two bounds. @throws COMPANION_ERROR
[[nodiscard]] long long IntegerOf(const VALUE_PLACE& place, const std::string& text, long long least, long long most);

/// Without the blanks, tabs and line ends around it.
[[nodiscard]] std::string Trimmed(const std::string& text);
