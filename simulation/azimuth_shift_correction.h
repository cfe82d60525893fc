/// \file azimuth_shift_correction.h

#pragma once

#include "simulation/scene.h"

/// p0 + p1 u + p2 u^2 + ... in seconds, u = travel time - reference; 0 without coefficients.
[[nodiscard]] double AzimuthShiftCorrection(const AZIMUTH_SHIFT_CORRECTION& correction, double travel_time_s);

/// Refuses a correction that would move the slave by more than 100 s at its near or far range, term by term: it belongs
/// to another acquisition or another unit, and could overflow. Errors: logged at ALARM with key, element and value,
/// then ERROR_PARAMETER.
void CheckAzimuthShiftCorrection(const AZIMUTH_SHIFT_CORRECTION& correction, const ACQUISITION_SCENE& slave);
