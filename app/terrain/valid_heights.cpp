#include "app/terrain/valid_heights.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/parse_number.h"

namespace {

constexpr const char* kNumberCharacters = "+-0123456789.E";

[[noreturn]] void Refuse(const SOURCED_TEXT& range) {
    Explain("can not parse: > %s < ", range.Text());
    LogRefusedText(range);
    throw ERROR_ARGUMENT();
}

/// The number at the start of the collected characters; nothing collected gives 0.
float Bound(const std::string& collected, const SOURCED_TEXT& range) {
    PARSE_RESULT result = PARSE_RESULT::OK;
    const double value = LeadingReal(collected, result);
    if (result == PARSE_RESULT::OUT_OF_RANGE || std::fabs(value) > std::numeric_limits<float>::max()) Refuse(range);
    return static_cast<float>(value);
}

bool EndsWithTwoDots(const std::string& collected) {
    return collected.size() >= 2 && collected.compare(collected.size() - 2, 2, "..") == 0;
}

}  // namespace

VALID_HEIGHTS ParseValidHeights(const SOURCED_TEXT& range) {
    VALID_HEIGHTS heights;
    std::string collected;
    bool bracket_open = false;
    for (const char c : range.text) {
        if (c != '\0' && std::strchr(kNumberCharacters, c) != nullptr) {
            collected += c;
            if (EndsWithTwoDots(collected)) {
                heights.minimum_m = Bound(collected.substr(0, collected.size() - 2), range);
                collected.clear();
            }
        } else if (c == '<') {
            bracket_open = true;
        } else if (c == '>') {
            if (bracket_open) {
                heights.maximum_m = Bound(collected, range);
                collected.clear();
            }
            bracket_open = true;
        } else {
            Refuse(range);
        }
    }
    heights.maximum_m = Bound(collected, range);
    return heights;
}

VALID_HEIGHTS ReadValidHeights(const SOURCED_TEXT& range) {
    if (!range.Given()) {
        Say(" - No dem valid value string given ");
        return {};
    }
    const VALID_HEIGHTS heights = ParseValidHeights(range);
    Say(" - Parsed valid dem value range: %f .. %f ", static_cast<double>(heights.minimum_m),
        static_cast<double>(heights.maximum_m));
    return heights;
}
