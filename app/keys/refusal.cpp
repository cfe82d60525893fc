#include "app/keys/refusal.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/logging.h"

namespace {

std::string Shown(double value) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.17g", value);
    return text.data();
}

/// Comparing a NaN would be an invalid operation, which ends the program.
bool IsInRange(double value, const VALUE_RANGE& range) {
    return std::isfinite(value) && value >= range.lowest && value <= range.highest;
}

}  // namespace

void LogRefusal(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"%s\": value %s %s", source.file.c_str(), source.key.c_str(),
                  value.c_str(), explanation.c_str());
}

void LogRefusedText(const VALUE_SOURCE& source, const std::string& text, const VALUE_RANGE& range) {
    LogRefusal(source, "\"" + text + "\"", "is not " + std::string(range.text));
}

void RefuseValue(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation) {
    LogRefusal(source, value, explanation);
    throw ERROR_PARAMETER();
}

void RefuseValue(const VALUE_SOURCE& source, double value, const std::string& explanation) {
    RefuseValue(source, Shown(value), explanation);
}

void RequireInRange(const VALUE_SOURCE& source, double value, const VALUE_RANGE& range) {
    if (*range.text == '\0' || IsInRange(value, range)) return;
    const bool usable = IsInRange(value, kFinite);
    RefuseValue(source, value, std::string("is not ") + (usable ? range : kFinite).text);
}

void RequireInRange(const VALUE_SOURCE& source, int value, const VALUE_RANGE& range) {
    if (!IsInRange(value, range)) RefuseValue(source, std::to_string(value), std::string("is not ") + range.text);
}

double RequiredReal(const VALUE_SOURCE& source, const std::string& text) {
    double value = 0.0;
    if (ParseReal(text, value) == PARSE_RESULT::OK && IsInRange(value, kFinite)) return value;
    LogRefusal(source, "\"" + text + "\"", "is not a finite real number");
    throw ERROR_ARGUMENT();
}

float RequiredFloat(const VALUE_SOURCE& source, const std::string& text) {
    float value = 0.0F;
    if (ParseFloat(text, value) == PARSE_RESULT::OK) return value;
    LogRefusal(source, "\"" + text + "\"", "is not a real number of single precision");
    throw ERROR_ARGUMENT();
}

void RequireText(const VALUE_SOURCE& source, const std::string& text, const VALUE_RANGE& range) {
    if (text.empty()) LogRefusedText(source, text, range);
    constexpr std::size_t kLastCharacter = 1;  // an empty STRING holds its terminating zero only
    static_cast<void>(STRING(text)[kLastCharacter]);
}
