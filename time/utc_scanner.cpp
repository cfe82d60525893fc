#include "time/utc_scanner.h"

#include <algorithm>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "time/calendar.h"
#include "time/time_scanner.h"

namespace {

constexpr int kLeapSecond = 60;
constexpr int kLastSecond = 62;
constexpr size_t kCompactLength = 15;

bool IsAt(const std::string& text, size_t position, char c) {
    return position < text.size() && text[position] == c;
}

[[noreturn]] void RefuseValue(const char* message, int value) {
    Log().Message(LOGGING_LEVEL::EXCEPTION, "%s%d", message, value);
    throw ERROR_DATA();
}

std::string UpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

/// YYYYMMDDThhmmss as YYYY-MM-DDThh:mm:ss.
std::string ExpandCompactForm(const std::string& text) {
    return text.substr(0, 4) + "-" + text.substr(4, 2) + "-" + text.substr(6, 5) + ":" + text.substr(11, 2) + ":" +
           text.substr(13, 2);
}

void ReadTimeOfDay(TIME_SCANNER& scanner, UNIVERSAL_TIME& time) {
    time.hour = scanner.GetNumber();
    if (time.hour > 23) RefuseValue("UTC_SCANNER: invalid hour: ", time.hour);
    scanner.GetSeparator();
    time.minute = scanner.GetNumber();
    if (time.minute > 59) RefuseValue("UTC_SCANNER: invalid minute: ", time.minute);
    scanner.GetSeparator();
    time.second = scanner.GetNumber();
    if (time.second > kLastSecond) RefuseValue("UTC_SCANNER: invalid second: ", time.second);
}

void CheckLeapSecond(const UNIVERSAL_TIME& time) {
    if (time.second >= kLeapSecond && !(time.hour == 23 && time.minute == 59)) {
        RefuseValue("UTC_SCANNER: invalid leap second: ", time.second);
    }
}

void CheckDate(const UNIVERSAL_TIME& time) {
    if (time.year > kLastYear) RefuseValue("UTC_SCANNER: invalid year: ", time.year);
    if (time.day < 1 || time.day > DaysOfMonth(time.year, time.month)) {
        Log().Message(LOGGING_LEVEL::EXCEPTION, "UTC_SCANNER: Invalid date: %d.%d.%d", time.day, time.month, time.year);
        throw ERROR_DATA();
    }
}

void ReadFraction(TIME_SCANNER& scanner, UNIVERSAL_TIME& time) {
    if (!scanner.GetPoint()) return;
    const MILLI_AND_MICRO_SECONDS fraction = scanner.GetMilliAndMicroSeconds();
    time.millisecond = fraction.milliseconds;
    time.microsecond = fraction.microseconds;
    scanner.ExpectEnd();
}

UNIVERSAL_TIME ReadDayMonthYear(TIME_SCANNER& scanner) {
    UNIVERSAL_TIME time;
    time.day = scanner.GetNumber();
    scanner.GetSeparator();
    time.month = scanner.GetMonth();
    scanner.GetSeparator();
    time.year = scanner.GetNumber();
    return time;
}

UNIVERSAL_TIME ReadYearMonthDay(TIME_SCANNER& scanner) {
    UNIVERSAL_TIME time;
    time.year = scanner.GetNumber();
    scanner.GetSeparator();
    time.month = scanner.GetMonth();
    scanner.GetSeparator();
    time.day = scanner.GetNumber();
    return time;
}

UNIVERSAL_TIME ReadMonthDayTimeYear(TIME_SCANNER& scanner) {
    UNIVERSAL_TIME time;
    time.month = scanner.GetMonth();
    time.day = scanner.GetNumber();
    ReadTimeOfDay(scanner, time);
    time.year = scanner.GetNumber();
    scanner.ExpectEnd();
    return time;
}

}  // namespace

UTC_FORM UTC_SCANNER::DetectForm(const std::string& text) const {
    if (text.size() == kCompactLength && IsAt(text, 8, 'T')) return UTC_FORM::COMPACT;
    if (IsAt(text, 3, ' ')) return UTC_FORM::MONTH_DAY_TIME_YEAR;
    if (IsAt(text, 2, '-') && IsAt(text, 6, '-')) {
        if (IsAt(text, 11, '/')) return UTC_FORM::DAY_MONTH_YEAR;
        if (IsAt(text, 11, ' ')) return UTC_FORM::DAY_MONTH_YEAR_BLANK;
    }
    if (IsAt(text, 4, '-') && IsAt(text, 7, '-') && IsAt(text, 13, ':') && IsAt(text, 16, ':')) {
        if (IsAt(text, 10, '/')) return UTC_FORM::YEAR_MONTH_DAY;
        if (IsAt(text, 10, 'T')) return UTC_FORM::ISO;
    }
    return UTC_FORM::UNKNOWN;
}

UNIVERSAL_TIME UTC_SCANNER::ScanForm(const std::string& text) const {
    const UTC_FORM form = DetectForm(text);
    if (form == UTC_FORM::MONTH_DAY_TIME_YEAR) {
        TIME_SCANNER scanner(UpperCase(text));
        const UNIVERSAL_TIME time = ReadMonthDayTimeYear(scanner);
        CheckLeapSecond(time);
        CheckDate(time);
        return time;
    }

    TIME_SCANNER scanner(form == UTC_FORM::COMPACT ? ExpandCompactForm(text) : text);
    UNIVERSAL_TIME time;
    switch (form) {
        case UTC_FORM::DAY_MONTH_YEAR:
        case UTC_FORM::DAY_MONTH_YEAR_BLANK:
            time = ReadDayMonthYear(scanner);
            break;
        case UTC_FORM::YEAR_MONTH_DAY:
        case UTC_FORM::ISO:
        case UTC_FORM::COMPACT:
            time = ReadYearMonthDay(scanner);
            break;
        default:
            throw "invalid or unsupported format";
    }
    if (form != UTC_FORM::DAY_MONTH_YEAR_BLANK) scanner.GetSeparator();
    ReadTimeOfDay(scanner, time);
    ReadFraction(scanner, time);
    CheckLeapSecond(time);
    CheckDate(time);
    return time;
}

UNIVERSAL_TIME UTC_SCANNER::Scan(const std::string& text) const {
    constexpr const char* kErrorDuringScan = "UTC_SCANNER: Error during scan of: %s";
    try {
        return ScanForm(text);
    } catch (const char* message) {
        Log().Message(LOGGING_LEVEL::ALARM, "UTC_SCANNER: %s: %s", message, text.c_str());
        LogAndThrow<ERROR_DATA>(kErrorDuringScan, text.c_str());
    } catch (const ERROR_EXCEPTION&) {  // the value that is wrong has been logged, not yet the text around it
        Log().Message(LOGGING_LEVEL::ALARM, kErrorDuringScan, text.c_str());
        throw;
    }
}
