/// \file csv_file.h
/// State vectors as comma or semicolon separated values below a line of column names, in any order and case:
///     t_utc (or utc, time_utc, t_tai, tai, time_tai, t_gps, gps, time_gps); x y z in metres; vx vy vz in m/s
/// (also with a unit: x_m, vx_m_s). Other columns are passed over, as are lines that begin with "#".

#pragma once

#include <string>

#include "import/orbit_files/orbit_table.h"

/// @param file  for messages. @throws COMPANION_ERROR for a missing or doubled column and a value that is none
[[nodiscard]] ORBIT_TABLE ParseCsv(const std::string& file, const std::string& content);
