#include "app/keys/refusal.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/logging.h"

namespace {

void LogRefusal(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"%s\": value %s %s", source.file.c_str(), source.key.c_str(),
                  value.c_str(), explanation.c_str());
}

bool IsUsable(double value) {
    return std::isfinite(value) && std::fabs(value) <= kLargestQuantity;
}

std::string Shown(double value) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.17g", value);
    return text.data();
}

}  // namespace

void RefuseValue(const VALUE_SOURCE& source, const std::string& value, const std::string& explanation) {
    LogRefusal(source, value, explanation);
    throw ERROR_PARAMETER();
}

void RefuseValue(const VALUE_SOURCE& source, double value, const std::string& explanation) {
    RefuseValue(source, Shown(value), explanation);
}

void RequirePositive(const VALUE_SOURCE& source, double value) {
    RequireFinite(source, value);
    if (value < 1.0 / kLargestQuantity) RefuseValue(source, value, "is not above 0");
}

void RequireFinite(const VALUE_SOURCE& source, double value) {
    if (!IsUsable(value)) RefuseValue(source, value, "is not a finite number of usable size");
}

double RequiredReal(const VALUE_SOURCE& source, const std::string& text) {
    double value = 0.0;
    if (ParseReal(text, value) == PARSE_RESULT::OK && IsUsable(value)) return value;
    LogRefusal(source, "\"" + text + "\"", "is not a finite real number");
    throw ERROR_ARGUMENT();
}

void RequireText(const std::string& text) {
    constexpr std::size_t kLastCharacter = 1;  // an empty STRING holds its terminating zero only
    static_cast<void>(STRING(text)[kLastCharacter]);
}

float RequiredFloat(const VALUE_SOURCE& source, const std::string& text) {
    float value = 0.0F;
    if (ParseFloat(text, value) == PARSE_RESULT::OK) return value;
    LogRefusal(source, "\"" + text + "\"", "is not a real number of single precision");
    throw ERROR_ARGUMENT();
}
