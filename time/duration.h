/// \file duration.h
/// A signed span of time to the microsecond.
/// Range: about 5.8 million years either way (days are a signed 32-bit integer). Milliseconds and microseconds count
/// forward within the day: -1.5 s is -1 day, 86 398 500 ms, 0 us.   Threads: plain values.

#pragma once

#include <compare>

struct DURATION {
    int days = 0;
    int milliseconds = 0;  ///< of the day, 0 to 86 399 999
    int microseconds = 0;  ///< 0 to 999

    /// Carries microseconds into milliseconds and milliseconds into days; each argument may have any sign.
    /// @throws const char* "duration range error" when the days leave the range
    [[nodiscard]] static DURATION Normalised(long long days, long long milliseconds, long long microseconds);

    /// The double nearest to the value within 270 years, beyond that to the last bit or so.
    [[nodiscard]] double Seconds() const;

    friend auto operator<=>(const DURATION&, const DURATION&) = default;
};

/// @throws const char* "duration range error"
[[nodiscard]] DURATION operator+(const DURATION& a, const DURATION& b);
[[nodiscard]] DURATION operator-(const DURATION& a, const DURATION& b);
[[nodiscard]] DURATION operator-(const DURATION& a);
