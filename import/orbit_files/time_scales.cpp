#include "import/orbit_files/time_scales.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "time/calendar.h"
#include "time/leap_seconds.h"

namespace {

constexpr long long kMicrosecondsPerSecond = 1'000'000;
constexpr int kTaiMinusUtcBefore1972_s = 10;
constexpr int kTaiMinusGps_s = 19;

/// Microseconds of a continuous count of days of 86 400 s.
long long ClockMicroseconds(const UNIVERSAL_TIME& time) {
    return DayNumber(time.year, time.month, time.day) * kMicrosecondsPerDay + time.MillisecondsOfDay() * 1000 +
           time.microsecond;
}

UNIVERSAL_TIME TimeOfClock(long long microseconds) {
    const CALENDAR_DATE date = DateOfDayNumber(microseconds / kMicrosecondsPerDay);
    long long rest = microseconds % kMicrosecondsPerDay;
    UNIVERSAL_TIME time{date.year, date.month, date.day};
    time.microsecond = static_cast<int>(rest % 1000);
    rest /= 1000;
    time.millisecond = static_cast<int>(rest % 1000);
    rest /= 1000;
    time.second = static_cast<int>(rest % 60);
    time.minute = static_cast<int>(rest / 60 % 60);
    time.hour = static_cast<int>(rest / 3600);
    return time;
}

/// Days that end with a leap second, in order of time.
const std::vector<long long>& LeapSecondDays() {
    static const std::vector<long long> days = [] {
        std::vector<long long> list;
        const ARRAY<LEAP_SECOND_ITEM>& table = LeapSecondTable();
        for (int i = 0; table[i].year != 0; ++i) {
            const int day = std::min(table[i].day, DaysOfMonth(table[i].year, table[i].month));
            list.push_back(DayNumber(table[i].year, table[i].month, day));
        }
        return list;
    }();
    return days;
}

/// From the TAI clock to UTC: the leap seconds are the instants at which TAI has counted one second more than the days
/// of 86 400 s.
UNIVERSAL_TIME UtcOfTaiClock(long long tai_us) {
    long long offset_us = kTaiMinusUtcBefore1972_s * kMicrosecondsPerSecond;
    for (const long long day : LeapSecondDays()) {
        const long long leap_second_us = (day + 1) * kMicrosecondsPerDay + offset_us;
        if (tai_us < leap_second_us) break;
        if (tai_us < leap_second_us + kMicrosecondsPerSecond) {
            UNIVERSAL_TIME inside = TimeOfClock(tai_us - offset_us - kMicrosecondsPerSecond);
            inside.second = 60;
            return inside;
        }
        offset_us += kMicrosecondsPerSecond;
    }
    return TimeOfClock(tai_us - offset_us);
}

/// 2023-008T... as 2023-01-08T...; other texts as they are.
std::string WithMonthAndDay(const std::string& text) {
    const bool has_day_of_year = text.size() > 8 && text[4] == '-' && text[8] == 'T';
    if (!has_day_of_year) return text;
    const auto is_digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    if (!std::all_of(text.begin(), text.begin() + 4, is_digit)) return text;
    if (!std::all_of(text.begin() + 5, text.begin() + 8, is_digit)) return text;
    const int year = std::stoi(text.substr(0, 4));
    const int day = std::stoi(text.substr(5, 3));
    if (day < 1 || day > (IsLeapYear(year) ? 366 : 365)) return text;
    const CALENDAR_DATE date = DateOfDayNumber(DayNumber(year, 1, 1) + day - 1);
    char replaced[16];
    std::snprintf(replaced, sizeof replaced, "%04d-%02d-%02d", date.year, date.month, date.day);
    return replaced + text.substr(8);
}

}  // namespace

std::optional<TIME_SCALE> TimeScaleOf(const std::string& text) {
    if (text == "UTC") return TIME_SCALE::UTC;
    if (text == "TAI") return TIME_SCALE::TAI;
    if (text == "GPS") return TIME_SCALE::GPS;
    return std::nullopt;
}

UNIVERSAL_TIME UtcOf(const VALUE_PLACE& place, const std::string& text) {
    UNIVERSAL_TIME time;
    try {
        time = UNIVERSAL_TIME::FromText(WithMonthAndDay(Trimmed(text)));
    } catch (const ERROR_EXCEPTION&) {
        RefuseValue(place, text, "a time like 2023-01-08T13:52:51.383925");
    }
    if (time.year < 1972) RefuseValue(place, text, "a time from 1972 on");
    return time;
}

UNIVERSAL_TIME UtcOf(const VALUE_PLACE& place, const std::string& text, TIME_SCALE scale) {
    const UNIVERSAL_TIME clock = UtcOf(place, text);
    if (scale == TIME_SCALE::UTC) return clock;
    if (clock.second >= 60) RefuseValue(place, text, "a second below 60: TAI and GPS time have no leap seconds");
    const int tai_minus_scale_s = scale == TIME_SCALE::GPS ? kTaiMinusGps_s : 0;
    return UtcOfTaiClock(ClockMicroseconds(clock) + tai_minus_scale_s * kMicrosecondsPerSecond);
}
