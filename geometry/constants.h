/// \file constants.h
/// Physical and mathematical constants of the engine, SI units.

#pragma once

inline constexpr double kSpeedOfLight = 299792458.0;  ///< metres per second
inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kTwoPi = 6.283185307179586;
inline constexpr double kRadiansPerDegree = kPi / 180.0;
inline constexpr double kDegreesPerRadian = 57.29577951308232;
