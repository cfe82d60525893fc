/// \file plain_kernel.h
/// The phase kernel written down plainly: every cell on its own, every corner solved anew by CalcSlaveTime, every pixel
/// tested by the areas of triangles. The yardstick of tests and benchmarks: same result, slowly.
/// Threads: one; the first cell to reach a pixel keeps it.

#pragma once

#include "simulation/scene.h"

/// Simulates the cells of DEM rows first_row <= row < last_row into the scene's grids.
void PlainSimulateRows(const SCENE& scene, int first_row, int last_row);

/// Whether a DEM sample lies in some quadrilateral of the area.
[[nodiscard]] bool PlainIsInsideArea(const SIMULATION_AREA& area, int column, int row);
