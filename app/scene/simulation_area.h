/// \file simulation_area.h
/// Stage A: where the master scene lies in the DEM. The area holds every DEM cell that can project into the image.

#pragma once

#include "app/simulation_state.h"

/// Geolocates a grid of 10 x 10 tiles over the master image (near edge at -1000 m, far edge at 9000 m of terrain
/// height) and fills state.scene.area and the simulated rows and columns, clamped to the DEM. Needs the DEM grid, the
/// orbits and the corrected start and stop times.
/// @throws ERROR_DATA for a satellite state or a range without a point on the ground, ERROR_PARAMETER when the DEM and
/// the
///         scene have no cell in common
void LocateSimulationArea(SIMULATION_STATE& state);
