/// \file result_images.h
/// The end of stage A: memory for the grids that the kernel fills.

#pragma once

#include "app/simulation_state.h"

/// Allocates and initialises, in this order: mask, phase, shift matrices, Earth coordinates, radar DEM; each only when
/// its product is wanted. The phase starts with the value of IFGRM_INVALID or 0, everything else with 0.
/// @throws ERROR_NO_MEMORY, also when the grids exceed the machine's memory and swap space together; or the text "error
/// in thread execution" when a filling thread failed
void AllocateResultImages(SIMULATION_STATE& state);
