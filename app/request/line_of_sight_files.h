/// \file line_of_sight_files.h
/// The three files of the line of sight: one key names them all.

#pragma once

#include <array>
#include <string>

#include "app/keys/control_values.h"

/// East, north, up; empty when not asked for.
using LINE_OF_SIGHT_FILES = std::array<SOURCED_TEXT, 3>;

/// "los/pair.ras" names "los/pair_e.ras", "los/pair_n.ras" and "los/pair_u.ras"; without an ending they get ".ras".
/// @param component  'e', 'n' or 'u'
[[nodiscard]] std::string LineOfSightPath(const std::string& given, char component);

/// @param given  what LINE_OF_SIGHT says. The files' keys are the names of the products, LINE_OF_SIGHT_E and so on
[[nodiscard]] LINE_OF_SIGHT_FILES LineOfSightFiles(const SOURCED_TEXT& given);
