#include "time/leap_seconds.h"

#include <algorithm>

#include "lib/baselib/logging/logging.h"

namespace {

struct LEAP_SECOND_DATE {
    int year;
    int month;
    int day;
};

constexpr LEAP_SECOND_DATE kDates[] = {
    {1972, 6, 30},  {1972, 12, 31}, {1973, 12, 31}, {1974, 12, 31}, {1975, 12, 31}, {1976, 12, 31}, {1977, 12, 31},
    {1978, 12, 31}, {1979, 12, 31}, {1981, 6, 30},  {1982, 6, 30},  {1983, 6, 30},  {1985, 6, 30},  {1987, 12, 31},
    {1989, 12, 31}, {1990, 12, 31}, {1992, 6, 30},  {1993, 6, 30},  {1994, 6, 30},  {1995, 12, 31}, {1997, 6, 30},
    {1998, 12, 31}, {2005, 12, 31}, {2008, 12, 31}, {2012, 6, 31},  {2015, 6, 31},  {2016, 12, 31},
};
constexpr int kItems = static_cast<int>(std::size(kDates));

ARRAY<LEAP_SECOND_ITEM> BuildTable() {
    ARRAY<LEAP_SECOND_ITEM> table(0, kItems + 1);  // the last item keeps its year 0
    for (int i = 0; i < kItems; ++i) {
        table[i] = {kDates[i].year, kDates[i].month, kDates[i].day, 23, 59, 60, 0, 0, 1};
    }
    return table;
}

bool TableCannotReach(int year_a, int year_b) {
    return kDates[0].year > std::max(year_a, year_b) || kDates[kItems - 1].year < std::min(year_a, year_b);
}

int CountAfterUpTo(const UNIVERSAL_TIME& earlier, const UNIVERSAL_TIME& later) {
    if (TableCannotReach(earlier.year, later.year)) return 0;
    const ARRAY<LEAP_SECOND_ITEM>& table = LeapSecondTable();
    int count = 0;
    for (int i = 0; table[i].year != 0; ++i) {
        const UNIVERSAL_TIME inserted = table[i].Time();
        if (inserted > earlier && inserted <= later) count += table[i].inserted_seconds;
    }
    return count;
}

}  // namespace

const ARRAY<LEAP_SECOND_ITEM>& LeapSecondTable() {
    static const ARRAY<LEAP_SECOND_ITEM> table = BuildTable();
    return table;
}

bool IsLeapSecond(const UNIVERSAL_TIME& time) {
    const ARRAY<LEAP_SECOND_ITEM>& table = LeapSecondTable();
    for (int i = 0; table[i].year != 0; ++i) {
        if (table[i].Time() == time) return true;
    }
    return false;
}

int LeapSecondCount(const UNIVERSAL_TIME& a, const UNIVERSAL_TIME& b) {
    const int count = a > b ? -CountAfterUpTo(b, a) : CountAfterUpTo(a, b);
    Log().Message(LOGGING_LEVEL::TRACE, "leap secs = %d", count);
    return count;
}
