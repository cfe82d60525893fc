/// \file phase_simulation.h
/// Stage B.

#pragma once

#include "app/simulation_state.h"

/// Splits the simulated DEM rows over the threads and runs the phase kernel.
/// @throws the text "error in thread execution" when a thread failed, "can not create thread"
void SimulatePhase(SIMULATION_STATE& state);
