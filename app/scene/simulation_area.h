/// \file simulation_area.h
/// Where the master scene lies in the DEM. The area holds every DEM cell that can project into the image.

#pragma once

#include "app/scene/image_to_dem.h"
#include "simulation/scene.h"

struct SCENE_IN_DEM {
    SIMULATION_AREA area;
    DEM_RANGE simulated;  ///< the area's rows and columns, clamped to the DEM
};

/// Geolocates a grid of 10 x 10 tiles over the master image (near edge at -1000 m, far edge at 9000 m of terrain
/// height).
/// @throws ERROR_DATA for a satellite state or a range without a point on the ground
[[nodiscard]] SCENE_IN_DEM LocateSimulationArea(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate,
                                                const DEM_GRID& dem);

/// @throws ERROR_PARAMETER when the DEM and the scene have no cell in common
void RequireCommonCells(const SCENE_IN_DEM& place, const DEM_GRID& dem, const TERRAIN_REQUEST& request);
