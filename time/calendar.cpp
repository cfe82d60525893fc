#include "time/calendar.h"

#include <cstring>

namespace {

constexpr int kMonths = 12;

// Index 0 belongs to no month.
constexpr int kDaysOfMonth[2][kMonths + 1] = {{-1, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
                                              {-1, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};
constexpr int kDaysBeforeMonth[2][kMonths + 1] = {{-1, 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334},
                                                  {-1, 0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335}};
constexpr const char* kMonthNames[kMonths + 1] = {
    "invalid month name", "JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

bool IsMonth(int month) {
    return month >= 1 && month <= kMonths;
}

/// Days of the years 0 to year - 1; year 0 is a leap year.
long long DaysBeforeYear(long long year) {
    return 365 * year + (year + 3) / 4 - (year + 99) / 100 + (year + 399) / 400;
}

}  // namespace

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysOfMonth(int year, int month) {
    return kDaysOfMonth[IsLeapYear(year)][IsMonth(month) ? month : 0];
}

int DayOfYear(int year, int month, int day) {
    return kDaysBeforeMonth[IsLeapYear(year)][IsMonth(month) ? month : 0] + day;
}

long long DayNumber(int year, int month, int day) {
    return DaysBeforeYear(year) + DayOfYear(year, month, day);
}

CALENDAR_DATE DateOfDayNumber(long long day_number) {
    // The mean length of the year is never more than one year off; the loops settle that one.
    constexpr double kMeanDaysPerYear = 365.2425;
    int year = static_cast<int>(static_cast<double>(day_number) / kMeanDaysPerYear);
    while (DaysBeforeYear(year + 1) < day_number) ++year;
    while (DaysBeforeYear(year) >= day_number) --year;
    const int day_of_year = static_cast<int>(day_number - DaysBeforeYear(year));
    int month = kMonths;
    while (kDaysBeforeMonth[IsLeapYear(year)][month] >= day_of_year) --month;
    return {year, month, day_of_year - kDaysBeforeMonth[IsLeapYear(year)][month]};
}

const char* MonthName(int month) {
    return kMonthNames[IsMonth(month) ? month : 0];
}

int MonthNumber(const char* name) {
    int month = kMonths;
    while (month > 0 && std::strcmp(name, kMonthNames[month]) != 0) --month;
    return month;
}
