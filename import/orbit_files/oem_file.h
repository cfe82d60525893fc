/// \file oem_file.h
/// CCSDS Orbit Ephemeris Messages in KVN form (CCSDS 502.0-B): key = value lines, then lines of time, position in km,
/// velocity in km/s and, if need be, acceleration, which is not used. Several segments are joined.

#pragma once

#include <string>

#include "import/orbit_files/orbit_table.h"

/// @param file  for messages. @throws COMPANION_ERROR for a time system other than UTC, TAI and GPS, for a frame that
/// does not rotate with the Earth, another centre, and whatever is broken or missing
[[nodiscard]] ORBIT_TABLE ParseOem(const std::string& file, const std::string& content);
