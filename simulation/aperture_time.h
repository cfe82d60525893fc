/// \file aperture_time.h

#pragma once

#include "simulation/scene.h"

/// Single-pass pairs: the time, in seconds, over which the slave's Doppler history spans its azimuth bandwidth. Of the
/// DEM's centre, or of the centre of the simulated rows and columns where the former lies outside the orbits' data
/// (told at DEBUG). 0 where the Doppler frequency does not fall with time.
[[nodiscard]] double ReferenceAperture(const SCENE& scene);

/// Errors: an aperture time that is not above 0, or longer than the slave orbit's data, is logged at ALARM, then
/// ERROR_PARAMETER.
void CheckAperture(const SCENE& scene, double aperture_s);
