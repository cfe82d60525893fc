/// \file axis_zero.h
/// The zero of an orbit's time axis: its reference time, or a whole number of seconds after it.
/// Why: 1e9 s from the zero a double tells 1.2e-7 s, 0.9 mm along the orbit; near it nothing is lost. Whole seconds are
/// exact wherever they stand.

#pragma once

#include "orbit/samples/reference_time.h"

struct AXIS_ZERO {
    ANY_TIME reference{};
    double after_s = 0.0;  ///< whole seconds from the reference to the zero
};

/// Within so many seconds of the reference time it is the zero itself: three days, where a double tells 3e-11 s.
inline constexpr double kNearSeconds = 262144.0;

/// The zero for times around t. @throws ERROR_ARGUMENT, after logging, when the kinds differ
[[nodiscard]] AXIS_ZERO ZeroNear(const ANY_TIME& reference, const ANY_TIME& t);

/// t - zero, leap seconds counted, rounded once. @throws as ZeroNear
[[nodiscard]] double SecondsSince(const AXIS_ZERO& zero, const ANY_TIME& t);

/// The difference of two zeros, to - from, rounded once. @throws as ZeroNear
[[nodiscard]] double SecondsBetween(const AXIS_ZERO& from, const AXIS_ZERO& to);
