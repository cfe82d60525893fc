/// \file stack_settings.h
/// What all pairs of a stack are made with: the content of STACK/stack.txt, by which a later call is held to the same.

#pragma once

#include <string>

#include "import/pair/run_request.h"

/// @param control_file  of every pair
[[nodiscard]] std::string SettingsText(const RUN_REQUEST& request, const std::string& control_file);
