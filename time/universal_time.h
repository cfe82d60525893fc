/// \file universal_time.h
/// UTC calendar time to the microsecond.
/// Range: Gregorian calendar, years 0 to 9999; second 60 and above only on a leap second.
/// Sub-second part: two integers, never a fraction, so that text -> value -> text is exact.
/// Differences count leap seconds: 31-DEC-2016/12:00:00 to 01-JAN-2017/12:00:00 is 86 401 s. An instant inside a leap
/// second counts as the same fraction of the second after it: 31-DEC-2016/23:59:59.5 to 23:59:60.5 is 2 s, one too
/// many. See leap_seconds.h for the leap seconds of 2012 and 2015. Threads: plain values; the leap-second table is
/// constant.

#pragma once

#include <compare>
#include <ctime>
#include <string>

#include "time/duration.h"

struct UNIVERSAL_TIME {
    int year = 0;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    int microsecond = 0;

    /// Any form that UTC_SCANNER reads. @throws ERROR_DATA, or ERROR_ARGUMENT for an unknown month name, after logging
    [[nodiscard]] static UNIVERSAL_TIME FromText(const std::string& text);
    /// From the system's broken-down time (years since 1900, months since January); the sub-second fields are 0.
    [[nodiscard]] static UNIVERSAL_TIME FromBrokenDownTime(const std::tm& broken_down);
    /// The system clock, to the second.
    [[nodiscard]] static UNIVERSAL_TIME Now();

    /// 05-MAR-2012/14:03:07.123456
    [[nodiscard]] std::string ToText() const;
    /// 2012-03-05T14:03:07.123456; reads back for years of four digits.
    [[nodiscard]] std::string ToIsoText() const;

    /// Hours, minutes, seconds and milliseconds of the day. A minute field of 60 counts as 59: log and record files
    /// hold such values for the last minute of an hour.
    [[nodiscard]] long long MillisecondsOfDay() const;

    /// There is no plain number behind a calendar time. @throws const char* "can not cast from UTC to double", always
    explicit operator double() const;

    /// All eight fields.
    friend bool operator==(const UNIVERSAL_TIME&, const UNIVERSAL_TIME&) = default;
    /// By year, day of year, time of day; values that differ only in how they spell an instant are equivalent here.
    friend std::weak_ordering operator<=>(const UNIVERSAL_TIME& a, const UNIVERSAL_TIME& b);
};

/// later - earlier, leap seconds counted; negative when the order is the other way round.
[[nodiscard]] DURATION operator-(const UNIVERSAL_TIME& later, const UNIVERSAL_TIME& earlier);

/// Inverse of the difference: (t + d) - t == d. A sum that falls into a leap second gives second 60, whose difference
/// is a second more (see above).
/// @throws const char* "can not represent UTC value", after logging, outside the years 0 to 9999
[[nodiscard]] UNIVERSAL_TIME operator+(const UNIVERSAL_TIME& time, const DURATION& duration);

/// Calendar times do not add up. @throws const char* "time operation not permitted", always
UNIVERSAL_TIME operator+(const UNIVERSAL_TIME&, const UNIVERSAL_TIME&);
