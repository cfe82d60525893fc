/// \file configuration_summary.h
/// The summary of the run's configuration in the log.

#pragma once

#include "app/simulation_state.h"

/// @throws std::out_of_range when the observation mode is empty, just before its line
void LogConfigurationSummary(const RUN_CONFIGURATION& configuration);
