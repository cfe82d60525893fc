/// \file calendar.h
/// Gregorian calendar arithmetic: leap years, days of month and year, continuous day numbers, month names.
/// Range: years 0 to 9999, proleptic before 1582. Threads: constant tables only.

#pragma once

inline constexpr long long kMicrosecondsPerDay = 86'400'000'000;
inline constexpr int kLastYear = 9999;  ///< a year has four digits

[[nodiscard]] bool IsLeapYear(int year);

/// Number of days of a month; -1 when there is no such month.
[[nodiscard]] int DaysOfMonth(int year, int month);

/// 1 for the first of January. A day beyond its month counts on into the next one: 31 June is 1 July.
/// @param month 1 to 12
[[nodiscard]] int DayOfYear(int year, int month, int day);

/// Days since 31 December of the year -1; consecutive days have consecutive numbers, whatever the year.
[[nodiscard]] long long DayNumber(int year, int month, int day);

struct CALENDAR_DATE {
    int year;
    int month;
    int day;
};

/// Inverse of DayNumber for real dates. @param day_number of a day of the years 0 to 9999
[[nodiscard]] CALENDAR_DATE DateOfDayNumber(long long day_number);

/// "JAN" to "DEC"; "invalid month name" for any other number.
[[nodiscard]] const char* MonthName(int month);

/// The number of a month name, 0 when there is no such name. Exact: upper case, three letters.
[[nodiscard]] int MonthNumber(const char* name);
