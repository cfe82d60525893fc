/// \file orbit_coverage.h
/// Whether the state vectors cover the acquisitions.

#pragma once

#include <string>

#include "app/keys/refusal.h"
#include "simulation/scene.h"

/// A WARNING when the state vectors do not cover the acquisition's azimuth interval, with both intervals in seconds on
/// the orbit's axis: interpolators extrapolate there, and the products lose accuracy.
/// One, too, for an interpolation that ends the run outside the data when these do not go 50 ms beyond the image: the
/// kernel looks at cells beside it.
/// @param start  where the first azimuth time came from
/// @throws ERROR_PARAMETER for an interval farther outside than the state vectors' own span: nothing there is an orbit
void CheckOrbitCoverage(const ACQUISITION_SCENE& scene, const std::string& pool, const VALUE_SOURCE& start);
