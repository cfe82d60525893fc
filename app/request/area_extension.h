/// \file area_extension.h
/// How far the simulated area reaches beyond the master image, so that sub-sampled grids cover it to its last pixel.

#pragma once

#include "app/simulation_state.h"

/// Fills area_extended, extension_x and extension_y from the six sub-sampling factors.
/// Shift or Earth factors above 1: their maximum; with a geocoding factor above 1 as well: the sum of all three kinds;
/// geocoding factors alone: these. A factor of 1 adds nothing; factors of 0 become 1.
/// @throws ERROR_PARAMETER when an extension exceeds 32 bits
void ComputeAreaExtension(RUN_CONFIGURATION& configuration);
