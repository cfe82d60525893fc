#include "lib/baselib/errors/parse_number.h"

#include <cctype>
#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstdlib>

namespace {

/// Non-stop floating point for the life of the object: exceptions neither trap nor leave their flags behind.
class TRAPS_HELD_BACK {
  public:
    TRAPS_HELD_BACK() { std::feholdexcept(&environment_); }
    ~TRAPS_HELD_BACK() { std::fesetenv(&environment_); }
    TRAPS_HELD_BACK(const TRAPS_HELD_BACK&) = delete;
    TRAPS_HELD_BACK& operator=(const TRAPS_HELD_BACK&) = delete;

  private:
    std::fenv_t environment_;
};

/// strtod would also read "0x1p3"; the decimal number in front of such an x is its zero.
bool IsHexadecimal(const char* text) {
    while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
    if (*text == '+' || *text == '-') ++text;
    return text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

}  // namespace

double LeadingReal(const std::string& text, PARSE_RESULT& result) {
    const char* const begin = text.c_str();
    result = PARSE_RESULT::TRAILING_CHARACTERS;
    if (IsHexadecimal(begin)) return 0.0;
    char* end = nullptr;
    double value = 0.0;
    errno = 0;
    {
        const TRAPS_HELD_BACK held;
        value = std::strtod(begin, &end);
    }
    if (end == begin) {
        result = PARSE_RESULT::NOT_A_NUMBER;
        return 0.0;
    }
    if (errno == ERANGE && std::isinf(value)) {
        result = PARSE_RESULT::OUT_OF_RANGE;
        return 0.0;
    }
    if (end == begin + text.size()) result = PARSE_RESULT::OK;
    return value;
}

PARSE_RESULT ParseReal(const std::string& text, double& value) {
    PARSE_RESULT result;
    const double number = LeadingReal(text, result);
    if (result == PARSE_RESULT::OK) value = number;
    return result;
}

PARSE_RESULT ParseFloat(const std::string& text, float& value) {
    // The largest float plus half a unit in its last place: from here on, narrowing rounds to infinity.
    constexpr double kFirstBeyondFloat = 0x1.ffffffp127;
    double number = 0.0;
    const PARSE_RESULT result = ParseReal(text, number);
    if (result != PARSE_RESULT::OK) return result;
    if (std::isfinite(number) && std::fabs(number) >= kFirstBeyondFloat) return PARSE_RESULT::OUT_OF_RANGE;
    value = static_cast<float>(number);
    return PARSE_RESULT::OK;
}

PARSE_RESULT ParseInteger(const std::string& text, long long& value) {
    const char* const begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(begin, &end, 10);
    if (end == begin) return PARSE_RESULT::NOT_A_NUMBER;
    if (errno == ERANGE) return PARSE_RESULT::OUT_OF_RANGE;
    if (end != begin + text.size()) return PARSE_RESULT::TRAILING_CHARACTERS;
    value = number;
    return PARSE_RESULT::OK;
}
