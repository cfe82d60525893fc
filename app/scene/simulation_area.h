/// \file simulation_area.h
/// Where the master scene lies in the DEM. The area holds every DEM cell that can project into the image.

#pragma once

#include <array>

#include "app/scene/image_to_dem.h"
#include "simulation/scene.h"

/// The first and last line at near range on the lowest terrain, then both at far range on the highest.
using SCENE_CORNERS = std::array<DEM_POSITION, 4>;

struct SCENE_IN_DEM {
    SIMULATION_AREA area;
    SCENE_CORNERS corners;
    DEM_RANGE simulated;  ///< the area's rows and columns, clamped to the DEM
};

[[nodiscard]] SCENE_CORNERS CornersOf(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate);

/// Geolocates a grid of 10 x 10 tiles over the master image (near edge at -1000 m, far edge at 9000 m of terrain
/// height).
/// @throws ERROR_DATA for a satellite state or a range without a point on the ground
[[nodiscard]] SCENE_IN_DEM LocateSimulationArea(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate,
                                                const DEM_GRID& dem);
