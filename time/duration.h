/// \file duration.h
/// A signed span of time to the microsecond.
/// Range: about 5.8 million years either way (days are a signed 32-bit integer). The three fields of a value carry the
/// same sign: -1.5 s is 0 days, -1500 ms, 0 us.   Threads: plain values.

#pragma once

#include <compare>

struct DURATION {
    int days = 0;
    int milliseconds = 0;  ///< within the day, magnitude 0 to 86 399 999
    int microseconds = 0;  ///< magnitude 0 to 999

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
