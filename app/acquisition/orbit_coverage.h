/// \file orbit_coverage.h
/// Whether the state vectors cover the acquisitions.

#pragma once

#include "app/simulation_state.h"

/// One WARNING per acquisition whose azimuth interval its state vectors do not cover, with both intervals in seconds on
/// the orbit's axis: interpolators extrapolate there, and the products lose accuracy.
/// @throws ERROR_PARAMETER for an interval farther outside than the state vectors' own span: nothing there is an orbit
void CheckOrbitCoverage(const SIMULATION_STATE& state);
