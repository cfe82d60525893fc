/// \file eof_file.h
/// Sentinel-1 orbit files (".EOF": precise and restituted orbits, XML).

#pragma once

#include <string>

#include "import/orbit_files/orbit_table.h"

/// @param file  for messages. @throws COMPANION_ERROR for another frame than EARTH_FIXED, another time than UTC, units
/// other than m and m/s, and whatever is broken or missing
[[nodiscard]] ORBIT_TABLE ParseEof(const std::string& file, const std::string& content);
