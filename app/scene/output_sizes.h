/// \file output_sizes.h
/// Stage A: the sizes of the sub-sampled outputs, with their checks. Nothing is allocated before they pass.

#pragma once

#include "app/simulation_state.h"

/// Fills state.shift_output. Every s-th sample and t-th line, one more than needed to cover the master image.
/// @throws ERROR_ALGORITHM when the extension is not enough or the grid does not cover the image
void SizeShiftMatrices(SIMULATION_STATE& state);

/// Fills state.earth_output; the Earth coordinate files and the radar DEM share it.
/// @throws ERROR_ALGORITHM when the extension is not enough, or the grid does not cover the image or the geocoding grid
void SizeEarthMatrices(SIMULATION_STATE& state);
