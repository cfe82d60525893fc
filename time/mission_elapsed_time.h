/// \file mission_elapsed_time.h
/// Mission elapsed time ("MET"): signed time since an origin that the mission defines, to the microsecond.
/// Range: days 0 to 9999 either way. No origin is compiled in: values are used relative to each other only.
/// Sub-second part: two integers, never a fraction, so that text -> value -> text is exact.   Threads: plain values.

#pragma once

#include <compare>
#include <string>

enum class MET_UNIT { DAYS, HOURS, MINUTES, SECONDS, MILLISECONDS, MICROSECONDS };

struct MISSION_ELAPSED_TIME {
    int sign = 1;  ///< +1 or -1
    int days = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    int milliseconds = 0;
    int microseconds = 0;

    static constexpr int kTextLength = 21;  ///< characters of a text
    static constexpr int kTextStride = 22;  ///< bytes per text in a list: with its terminator
    static constexpr int kMostDays = 9999;

    /// @throws ERROR_DATA, after logging
    [[nodiscard]] static MISSION_ELAPSED_TIME FromText(const std::string& text);
    /// @throws const char* "can not represent MET value", after logging, beyond 9999 days
    [[nodiscard]] static MISSION_ELAPSED_TIME FromMicroseconds(long long microseconds);

    /// +0012/03:04:05.006007
    [[nodiscard]] std::string ToText() const;

    /// The whole value, with its sign.
    [[nodiscard]] long long Microseconds() const;

    /// Adds a count (of any sign) of one unit and carries or borrows as needed. Unchanged when it fails.
    /// @throws const char* "can not represent MET value", after logging
    void Add(MET_UNIT unit, int count);
    void Subtract(MET_UNIT unit, int count);

    /// There is no plain number behind a MET. @throws const char* "can not cast from MET to double", always
    explicit operator double() const;

    /// By value: -0000/00:00:00 equals +0000/00:00:00.
    friend bool operator==(const MISSION_ELAPSED_TIME& a, const MISSION_ELAPSED_TIME& b) {
        return a.Microseconds() == b.Microseconds();
    }
    friend std::weak_ordering operator<=>(const MISSION_ELAPSED_TIME& a, const MISSION_ELAPSED_TIME& b) {
        return a.Microseconds() <=> b.Microseconds();
    }
};

/// Logs and throws const char* "can not represent MET value" when the days are more than 9999.
void CheckMetDays(long long days);

/// Elapsed times do not add up. @throws const char* "time operation not permitted", always
MISSION_ELAPSED_TIME operator+(const MISSION_ELAPSED_TIME&, const MISSION_ELAPSED_TIME&);
