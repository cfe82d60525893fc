/// \file velmora_version.h
/// The program's version record.

#pragma once

#include <string>

#include "lib/baselib/logging/version_record.h"

/// @param program_name the binary name as the controller reports it
[[nodiscard]] VERSION_RECORD VelmoraVersion(const std::string& program_name);
