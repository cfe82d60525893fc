/// \file leap_seconds.h
/// The leap seconds inserted into UTC since 1972, and what orbits and record files ask of them.
///
/// The entries of 2012 and 2015 stand on 31 June, as deployed data were made with them. In consequence
/// - 30-JUN-2012/23:59:60 and 30-JUN-2015/23:59:60 are no leap seconds for IsLeapSecond;
/// - the ordering puts 31 June on 1 July, so these two seconds are counted one day late: a difference across midnight
/// of
///   30 June 2012 or 2015 is one second short when it ends on 1 July, and one across the following midnight is one
///   second long when it starts on 1 July. From 30 June to 2 July and beyond all differences are right.
/// Threads: the table is built by the first call and constant from then on.

#pragma once

#include "lib/baselib/containers/array.h"
#include "time/universal_time.h"

struct LEAP_SECOND_ITEM {
    int year = 0;  ///< 0 closes the table
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    int microsecond = 0;
    int inserted_seconds = 0;

    [[nodiscard]] UNIVERSAL_TIME Time() const {
        return {year, month, day, hour, minute, second, millisecond, microsecond};
    }
};

/// 27 items in order of time, closed by an item of year 0.
[[nodiscard]] const ARRAY<LEAP_SECOND_ITEM>& LeapSecondTable();

/// True when all eight fields equal those of an item.
[[nodiscard]] bool IsLeapSecond(const UNIVERSAL_TIME& time);

/// Items after the earlier and not after the later of the two times; negative when a is later than b. Logged at TRACE.
[[nodiscard]] int LeapSecondCount(const UNIVERSAL_TIME& a, const UNIVERSAL_TIME& b);
