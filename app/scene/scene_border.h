/// \file scene_border.h
/// Places along the borders of the simulated scene, on terrain whose height is known between two bounds: a look at the
/// scene before the simulation.

#pragma once

#include <vector>

#include "app/scene/image_to_dem.h"
#include "simulation/scene.h"

/// A pixel of the first or last line, or of the first or last column. Wherever its terrain lies between the two
/// heights, it is seen between the two positions.
struct BORDER_PLACE {
    double azimuth_time_s = 0.0;  ///< on the master orbit's axis
    double range_time_s = 0.0;    ///< two-way
    DEM_POSITION lowest;
    DEM_POSITION highest;
};

/// Ten equal steps along each of the four borders.
/// @param lowest_m, highest_m  terrain; what lies outside the heights that are simulated counts as their bounds
/// @throws ERROR_DATA when a range does not reach the ground
[[nodiscard]] std::vector<BORDER_PLACE> PlacesAlongBorder(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate,
                                                          double lowest_m, double highest_m);
