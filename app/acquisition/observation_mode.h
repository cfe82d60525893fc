/// \file observation_mode.h
/// The table of observation modes.

#pragma once

#include <string>

#include "app/simulation_state.h"

/// Exact, case-sensitive match: "single_pass" or "dual_pass".
/// @throws ERROR_ARGUMENT for any other text
OBSERVATION_MODE ObservationModeOf(const std::string& text);
