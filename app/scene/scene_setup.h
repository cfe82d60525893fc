/// \file scene_setup.h
/// Hands what stage A has read to the kernel: fills state.scene.

#pragma once

#include "app/simulation_state.h"

/// Acquisitions, observation mode and correction polynomial; needs the corrected start and stop times.
void SetUpAcquisitions(SIMULATION_STATE& state);

/// The row tables, sizes and factors of the result images.
void SetUpGrids(SIMULATION_STATE& state);
