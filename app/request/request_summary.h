/// \file request_summary.h
/// The summary of the run's configuration in the log.

#pragma once

#include "app/request/request.h"

/// @throws std::out_of_range when the observation mode is empty, just before its line
void LogRequestSummary(const REQUEST& request);
