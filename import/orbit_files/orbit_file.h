/// \file orbit_file.h
/// An orbit file of any kind: the content tells which.

#pragma once

#include <string>

#include "import/orbit_files/orbit_table.h"

/// Sentinel-1 EOF (XML), CCSDS OEM in KVN form, or CSV; checked by CheckOrbitTable. @throws COMPANION_ERROR
[[nodiscard]] ORBIT_TABLE ParseOrbit(const std::string& file, const std::string& content);
[[nodiscard]] ORBIT_TABLE ReadOrbitFile(const std::string& file);
