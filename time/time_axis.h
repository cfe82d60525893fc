/// \file time_axis.h
/// The four operations that every time type of an orbit offers, under one name each: from text, to text, difference in
/// seconds, shift by seconds. Types: double (plain seconds), UNIVERSAL_TIME, MISSION_ELAPSED_TIME.
/// Resolution: a microsecond for the calendar types; differences of those are exact to the nearest double.
/// Threads: no state.

#pragma once

#include <string>

#include "time/mission_elapsed_time.h"
#include "time/universal_time.h"

template <class S>
struct TIME_AXIS;

template <>
struct TIME_AXIS<double> {
    static constexpr const char* kName = "plain seconds";
    /// One decimal number. @throws ERROR_DATA, after logging
    [[nodiscard]] static double FromText(const std::string& text);
    /// The shortest text that reads back to the same value.
    [[nodiscard]] static std::string ToText(const double& t);
    [[nodiscard]] static double SecondsSince(const double& reference, const double& t) { return t - reference; }
    [[nodiscard]] static double Plus(const double& t, double seconds) { return t + seconds; }
};

template <>
struct TIME_AXIS<UNIVERSAL_TIME> {
    static constexpr const char* kName = "UTC";
    /// @throws ERROR_DATA or ERROR_ARGUMENT, after logging
    [[nodiscard]] static UNIVERSAL_TIME FromText(const std::string& text) { return UNIVERSAL_TIME::FromText(text); }
    [[nodiscard]] static std::string ToText(const UNIVERSAL_TIME& t) { return t.ToText(); }
    /// Leap seconds counted.
    [[nodiscard]] static double SecondsSince(const UNIVERSAL_TIME& reference, const UNIVERSAL_TIME& t) {
        return (t - reference).Seconds();
    }
    /// Rounded to the microsecond. @throws const char* "can not represent UTC value", after logging
    [[nodiscard]] static UNIVERSAL_TIME Plus(const UNIVERSAL_TIME& t, double seconds);
};

template <>
struct TIME_AXIS<MISSION_ELAPSED_TIME> {
    static constexpr const char* kName = "MET";
    /// @throws ERROR_DATA, after logging
    [[nodiscard]] static MISSION_ELAPSED_TIME FromText(const std::string& text) {
        return MISSION_ELAPSED_TIME::FromText(text);
    }
    [[nodiscard]] static std::string ToText(const MISSION_ELAPSED_TIME& t) { return t.ToText(); }
    [[nodiscard]] static double SecondsSince(const MISSION_ELAPSED_TIME& reference, const MISSION_ELAPSED_TIME& t) {
        return static_cast<double>(t.Microseconds() - reference.Microseconds()) / 1e6;
    }
    /// Rounded to the microsecond. @throws const char* "can not represent MET value", after logging
    [[nodiscard]] static MISSION_ELAPSED_TIME Plus(const MISSION_ELAPSED_TIME& t, double seconds);
};

/// A time of one type as another. Only a type itself converts: no origin ties MET or plain seconds to UTC.
/// @throws const char* "not allowed time conversion"
template <class To, class From>
[[nodiscard]] To ConvertTime(const From& time) {
    if constexpr (std::is_same_v<To, From>) {
        return time;
    } else {
        throw "not allowed time conversion";
    }
}
