#include "app/terrain/dem_valid_range.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr const char* kNumberCharacters = "+-0123456789.E";

[[noreturn]] void Refuse(const std::string& text) {
    Log().Message(LOGGING_LEVEL::ALARM, "can not parse: > %s < ", text.c_str());
    throw ERROR_ARGUMENT();
}

/// The number at the start of the collected characters; nothing collected gives 0.
float Bound(const std::string& collected, const std::string& text) {
    PARSE_RESULT result = PARSE_RESULT::OK;
    const double value = LeadingReal(collected, result);
    if (result == PARSE_RESULT::OUT_OF_RANGE || std::fabs(value) > std::numeric_limits<float>::max()) {
        Log().Message(LOGGING_LEVEL::ALARM, "configuration: key \"DEM_VALID\": bound %s exceeds single precision",
                      collected.c_str());
        Refuse(text);
    }
    return static_cast<float>(value);
}

bool EndsWithTwoDots(const std::string& collected) {
    return collected.size() >= 2 && collected.compare(collected.size() - 2, 2, "..") == 0;
}

}  // namespace

DEM_VALID_RANGE ParseDemValidRange(const std::string& text) {
    DEM_VALID_RANGE range;
    std::string collected;
    bool bracket_open = false;
    for (const char c : text) {
        if (c != '\0' && std::strchr(kNumberCharacters, c) != nullptr) {
            collected += c;
            if (EndsWithTwoDots(collected)) {
                range.minimum_m = Bound(collected.substr(0, collected.size() - 2), text);
                collected.clear();
            }
        } else if (c == '<') {
            bracket_open = true;
        } else if (c == '>') {
            if (bracket_open) {
                range.maximum_m = Bound(collected, text);
                collected.clear();
            }
            bracket_open = true;
        } else {
            Refuse(text);
        }
    }
    range.maximum_m = Bound(collected, text);
    return range;
}
