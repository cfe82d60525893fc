#include "time/universal_time.h"

#include <cstdio>

#include "lib/baselib/logging/logging.h"
#include "time/calendar.h"
#include "time/leap_seconds.h"
#include "time/utc_scanner.h"

namespace {

constexpr long long kMicrosecondsPerSecond = 1'000'000;
constexpr long long kMillisecondsPerMinute = 60'000;
constexpr int kSpareMinute = 60;
constexpr size_t kTextSize = 128;  // eight integers of at most eleven characters and their separators

/// Microseconds on an axis without leap seconds, since the day before year 0.
long long CalendarMicroseconds(const UNIVERSAL_TIME& time) {
    return DayNumber(time.year, time.month, time.day) * kMicrosecondsPerDay + time.MillisecondsOfDay() * 1000 +
           time.microsecond;
}

[[noreturn]] void ThrowNotRepresentable() {
    Log().Message(LOGGING_LEVEL::ALARM, "UNIVERSAL_TIME: exceeding representable range of the years 0 to %d",
                  kLastYear);
    throw "can not represent UTC value";
}

UNIVERSAL_TIME FromCalendarMicroseconds(long long microseconds) {
    const long long day_number = microseconds / kMicrosecondsPerDay;
    if (microseconds < kMicrosecondsPerDay || day_number > DayNumber(kLastYear, 12, 31)) ThrowNotRepresentable();
    const CALENDAR_DATE date = DateOfDayNumber(day_number);
    const long long of_day = microseconds % kMicrosecondsPerDay;
    const int seconds = static_cast<int>(of_day / kMicrosecondsPerSecond);
    const int fraction = static_cast<int>(of_day % kMicrosecondsPerSecond);
    return {date.year,         date.month,   date.day,        seconds / 3600,
            seconds / 60 % 60, seconds % 60, fraction / 1000, fraction % 1000};
}

/// Second 60 of the day before the given midnight.
UNIVERSAL_TIME InsideLeapSecond(long long midnight, long long microseconds_after_midnight) {
    UNIVERSAL_TIME time = FromCalendarMicroseconds(midnight - kMicrosecondsPerSecond + microseconds_after_midnight);
    time.second = 60;
    return time;
}

}  // namespace

UNIVERSAL_TIME UNIVERSAL_TIME::FromText(const std::string& text) {
    return UTC_SCANNER().Scan(text);
}

UNIVERSAL_TIME UNIVERSAL_TIME::FromBrokenDownTime(const std::tm& broken_down) {
    return {broken_down.tm_year + 1900,
            broken_down.tm_mon + 1,
            broken_down.tm_mday,
            broken_down.tm_hour,
            broken_down.tm_min,
            broken_down.tm_sec,
            0,
            0};
}

UNIVERSAL_TIME UNIVERSAL_TIME::Now() {
    const std::time_t seconds = std::time(nullptr);
    std::tm broken_down{};
    gmtime_r(&seconds, &broken_down);
    return FromBrokenDownTime(broken_down);
}

std::string UNIVERSAL_TIME::ToText() const {
    char text[kTextSize];
    std::snprintf(text, sizeof text, "%.2d-%3s-%.4d/%.2d:%.2d:%.2d.%.3d%.3d", day, MonthName(month), year, hour, minute,
                  second, millisecond, microsecond);
    return text;
}

std::string UNIVERSAL_TIME::ToIsoText() const {
    char text[kTextSize];
    std::snprintf(text, sizeof text, "%d-%02d-%02dT%02d:%02d:%02d.%03d%03d", year, month, day, hour, minute, second,
                  millisecond, microsecond);
    return text;
}

long long UNIVERSAL_TIME::MillisecondsOfDay() const {
    const long long counted_minute = minute == kSpareMinute ? kSpareMinute - 1 : minute;
    return hour * 60LL * kMillisecondsPerMinute + counted_minute * kMillisecondsPerMinute + second * 1000LL +
           millisecond;
}

UNIVERSAL_TIME::operator double() const {
    throw "can not cast from UTC to double";
}

std::weak_ordering operator<=>(const UNIVERSAL_TIME& a, const UNIVERSAL_TIME& b) {
    if (a.year != b.year) return a.year <=> b.year;
    const int day_a = DayOfYear(a.year, a.month, a.day);
    const int day_b = DayOfYear(b.year, b.month, b.day);
    if (day_a != day_b) return day_a <=> day_b;
    if (a.MillisecondsOfDay() != b.MillisecondsOfDay()) return a.MillisecondsOfDay() <=> b.MillisecondsOfDay();
    return a.microsecond <=> b.microsecond;
}

DURATION operator-(const UNIVERSAL_TIME& later, const UNIVERSAL_TIME& earlier) {
    const long long days =
        DayNumber(later.year, later.month, later.day) - DayNumber(earlier.year, earlier.month, earlier.day);
    const long long milliseconds = later.MillisecondsOfDay() - earlier.MillisecondsOfDay();
    return DURATION::Normalised(days, milliseconds + 1000LL * LeapSecondCount(earlier, later),
                                static_cast<long long>(later.microsecond) - earlier.microsecond);
}

UNIVERSAL_TIME operator+(const UNIVERSAL_TIME& time, const DURATION& duration) {
    constexpr int kMostDays = 4'000'000;  // more than the years 0 to 9999, and far from overflow
    if (duration.days > kMostDays || duration.days < -kMostDays) ThrowNotRepresentable();

    // The difference counts on one axis: calendar microseconds plus a second for every item up to the instant.
    long long target = CalendarMicroseconds(time) + duration.days * kMicrosecondsPerDay +
                       duration.milliseconds * 1000LL + duration.microseconds;
    const ARRAY<LEAP_SECOND_ITEM>& table = LeapSecondTable();
    for (int i = 0; table[i].year != 0; ++i) {
        if (table[i].Time() <= time) target += table[i].inserted_seconds * kMicrosecondsPerSecond;
    }
    // Take the seconds off again, item by item, as far as the target lies behind them.
    for (int i = 0; table[i].year != 0; ++i) {
        const long long midnight = CalendarMicroseconds(table[i].Time());
        if (target < midnight) break;
        if (target < midnight + kMicrosecondsPerSecond) return InsideLeapSecond(midnight, target - midnight);
        target -= table[i].inserted_seconds * kMicrosecondsPerSecond;
    }
    return FromCalendarMicroseconds(target);
}

UNIVERSAL_TIME operator+(const UNIVERSAL_TIME&, const UNIVERSAL_TIME&) {
    throw "time operation not permitted";
}
