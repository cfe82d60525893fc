/// \file dem_void_report.h
/// DEM samples that can not be heights.

#pragma once

#include "app/simulation_state.h"

/// The customary mark of a missing height in 16-bit DEMs.
inline constexpr short kDemVoid_m = -32768;

/// Whether a sample is a void or, when a range with maximum above minimum was given, outside of it.
bool IsInvalidDemSample(const SIMULATION_STATE& state, short sample_m);

/// Counts such samples inside the simulated rows and columns and reports them once at WARNING, with the number and the
/// first position. The values are used as they are.
void ReportDemVoids(const SIMULATION_STATE& state);
