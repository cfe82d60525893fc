#include "time/time_axis.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/logging.h"
#include "time/calendar.h"

namespace {

constexpr double kMostSeconds = 1e12;  // beyond every calendar type's range, and far from overflow in microseconds

/// @throws message when the shift exceeds any calendar
long long RoundToMicroseconds(double seconds, const char* message) {
    if (!std::isfinite(seconds) || std::fabs(seconds) > kMostSeconds) {
        Log().Message(LOGGING_LEVEL::ALARM, "TIME: a shift by %g seconds exceeds the representable range", seconds);
        throw message;
    }
    return std::llround(seconds * 1e6);
}

}  // namespace

double TIME_AXIS<double>::FromText(const std::string& text) {
    constexpr const char* kBlanks = " \t";
    const size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    const size_t end = text.find_last_not_of(kBlanks) + 1;  // 0 when there are blanks only
    double value = 0.0;
    if (ParseReal(text.substr(first, end < first ? 0 : end - first), value) != PARSE_RESULT::OK ||
        !std::isfinite(value)) {
        LogAndThrow<ERROR_DATA>("TIME: \"%s\" is no number of seconds", text.c_str());
    }
    return value;
}

std::string TIME_AXIS<double>::ToText(const double& t) {
    char text[32];  // the shortest text of a double has at most 24 characters
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, t);
    return {text, end.ptr};
}

UNIVERSAL_TIME TIME_AXIS<UNIVERSAL_TIME>::Plus(const UNIVERSAL_TIME& t, double seconds) {
    const long long shift = RoundToMicroseconds(seconds, "can not represent UTC value");
    return t + DURATION::Normalised(shift / kMicrosecondsPerDay, 0, shift % kMicrosecondsPerDay);
}

MISSION_ELAPSED_TIME TIME_AXIS<MISSION_ELAPSED_TIME>::Plus(const MISSION_ELAPSED_TIME& t, double seconds) {
    return MISSION_ELAPSED_TIME::FromMicroseconds(t.Microseconds() +
                                                  RoundToMicroseconds(seconds, "can not represent MET value"));
}
