#include "companions/companion_error.h"

#include <cmath>

#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/log_texts.h"

namespace {

constexpr double kLargestReal = 1e30;

}  // namespace

std::string Quoted(const std::string& value) {
    constexpr std::size_t kMostCharacters = 80;
    const bool is_long = value.size() > kMostCharacters;
    return "\"" + Printable(value.substr(0, kMostCharacters)) + (is_long ? "...\"" : "\"");
}

void RefuseValue(const VALUE_PLACE& place, const std::string& value, const std::string& expected) {
    throw COMPANION_ERROR(place.file + ": " + place.where + ": value " + Quoted(value) + ": expected " + expected);
}

std::string Trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

double RealOf(const VALUE_PLACE& place, const std::string& text) {
    double value = 0.0;
    const bool is_number = ParseReal(Trimmed(text), value) == PARSE_RESULT::OK;
    if (!is_number || !std::isfinite(value) || std::fabs(value) > kLargestReal)
        RefuseValue(place, text, "a finite number");
    return value;
}

long long IntegerOf(const VALUE_PLACE& place, const std::string& text, long long least, long long most) {
    long long value = 0;
    const bool is_number = ParseInteger(Trimmed(text), value) == PARSE_RESULT::OK;
    if (!is_number || value < least || value > most)
        RefuseValue(place, text, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return value;
}
