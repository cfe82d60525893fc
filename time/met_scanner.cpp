#include "time/met_scanner.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "time/time_scanner.h"

namespace {

void ReadFields(const std::string& text, MISSION_ELAPSED_TIME& time) {
    TIME_SCANNER scanner(text);
    time.sign = scanner.GetSign() == '-' ? -1 : 1;
    const int days = scanner.GetNumber();
    CheckMetDays(days);
    time.days = days;
    scanner.GetSeparator();
    const int hours = scanner.GetNumber();
    if (hours > 23) throw "hours are outside 0..23";
    time.hours = hours;
    scanner.GetSeparator();
    const int minutes = scanner.GetNumber();
    if (minutes > 59) throw "minutes are outside 0..59";
    time.minutes = minutes;
    scanner.GetSeparator();
    const int seconds = scanner.GetNumber();
    if (seconds > 59) throw "seconds are outside 0..59";
    time.seconds = seconds;
    if (!scanner.GetPoint()) return;
    const MILLI_AND_MICRO_SECONDS fraction = scanner.GetMilliAndMicroSeconds();
    time.milliseconds = fraction.milliseconds;
    time.microseconds = fraction.microseconds;
    scanner.ExpectEnd();
}

}  // namespace

void MET_SCANNER::ScanFields(const std::string& text, MISSION_ELAPSED_TIME& time) const {
    try {
        ReadFields(text, time);
    } catch (const ERROR_ARGUMENT&) {  // letters that are no month; here a month has no place either
        throw "unexpected letters in a mission elapsed time";
    }
}

MISSION_ELAPSED_TIME MET_SCANNER::Scan(const std::string& text) const {
    constexpr const char* kErrorDuringScan = "MET_SCANNER: Error during scan of: %s";
    MISSION_ELAPSED_TIME time;
    try {
        ScanFields(text, time);
        return time;
    } catch (const char* message) {
        Log().Message(LOGGING_LEVEL::ALARM, "MET_SCANNER: %s: %s", message, text.c_str());
    }
    LogAndThrow<ERROR_DATA>(kErrorDuringScan, text.c_str());
}
