/// \file time_scales.h
/// Times of orbit files, in UTC, TAI or GPS time, as UTC.
/// TAI - UTC is 10 s at the beginning of 1972 and one more after every leap second; GPS time is TAI - 19 s. The leap
/// seconds are those of time/leap_seconds.h, where 30 June 2012 and 2015 are written as 31 June.
/// Range: from 1972 on.

#pragma once

#include <optional>
#include <string>

#include "companions/companion_error.h"
#include "time/universal_time.h"

enum class TIME_SCALE { UTC, TAI, GPS };

/// "UTC", "TAI", "GPS" in capitals; nothing for another text.
[[nodiscard]] std::optional<TIME_SCALE> TimeScaleOf(const std::string& text);

/// A UTC text in any form that the processor reads, or with the day of the year (2023-008T13:52:51.383925).
/// @throws COMPANION_ERROR
[[nodiscard]] UNIVERSAL_TIME UtcOf(const VALUE_PLACE& place, const std::string& text);

/// The same for a text in the given scale. An instant within a leap second comes out with second 60.
[[nodiscard]] UNIVERSAL_TIME UtcOf(const VALUE_PLACE& place, const std::string& text, TIME_SCALE scale);
