/// \file shift_maps.h
/// The range and azimuth shift maps: where each master pixel lies in the slave image.

#pragma once

#include "app/simulation_state.h"

/// Writes both maps: absolute slave positions or, with relative shifts, slave minus master position (pixels).
/// @throws the image errors
void SaveShiftMaps(SIMULATION_STATE& state);
