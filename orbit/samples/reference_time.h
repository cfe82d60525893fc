/// \file reference_time.h
/// The zero of an orbit's time axis, in one of the three time types.

#pragma once

#include <string>
#include <variant>

#include "time/mission_elapsed_time.h"
#include "time/universal_time.h"

/// Seconds, UTC or MET.
using ANY_TIME = std::variant<double, UNIVERSAL_TIME, MISSION_ELAPSED_TIME>;

/// In the order of ANY_TIME's alternatives.
enum class TIME_KIND { SECONDS, UTC, MET };

/// The kind of a time type: double, UNIVERSAL_TIME or MISSION_ELAPSED_TIME.
template <class S>
[[nodiscard]] constexpr TIME_KIND TimeKindOf() {
    if (std::is_same_v<S, UNIVERSAL_TIME>) return TIME_KIND::UTC;
    return std::is_same_v<S, MISSION_ELAPSED_TIME> ? TIME_KIND::MET : TIME_KIND::SECONDS;
}

/// "plain seconds", "UTC" or "MET".
[[nodiscard]] const char* TextOf(TIME_KIND kind);
[[nodiscard]] const char* KindOf(const ANY_TIME& time);
[[nodiscard]] std::string TextOf(const ANY_TIME& time);

/// Reads a reference time. The form of the text decides its kind: without ':' plain seconds, with ':' but without '-'
/// MET, with both UTC. Hence a MET with a minus sign and a UTC text without '-' are read as what they are not, and
/// refused.
/// @throws ERROR_DATA or ERROR_ARGUMENT, after logging
[[nodiscard]] ANY_TIME ReferenceTimeFromText(const std::string& text);

/// @throws ERROR_ARGUMENT, after logging, for times of two kinds: nothing ties one to the other
void RequireSameKind(const ANY_TIME& a, const ANY_TIME& b);
