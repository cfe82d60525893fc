/// \file coverage_check.h
/// The start of stage C: every pixel of the simulated area must have been simulated before a product is written.

#pragma once

#include "app/simulation_state.h"

/// @throws ERROR_PARAMETER at a gap, after a WARNING for its first point and one that explains the gap: number of
///         missing points, the box around them, and why: the DEM ends there, a void lies there, cells exceed 1000
///         samples or the terrain lies outside the heights that are simulated
void CheckCoverage(const SIMULATION_STATE& state);
