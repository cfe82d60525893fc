/// \file scene_meets_dem.h
/// Whether the scene and the DEM meet at all.

#pragma once

#include "app/request/request.h"
#include "app/scene/simulation_area.h"

/// One line at INFO: look direction and the box around the scene in degrees.
void SayPlace(const SCENE_IN_DEM& place, const ACQUISITIONS& acquisitions);

/// The fixed line about a point of the simulated area that nothing reaches, at WARNING.
void WarnAboutMissingPoint(int sample, int line);

/// @param mirrored  the scene's corners, had the antenna looked to the other side
/// @throws ERROR_PARAMETER when DEM and scene have no cell in common, after the line of the coverage check, whose first
///         point it would be, and lines with the scene's corners, the DEM's edges and what the other side would give
void RequireCommonCells(const SCENE_IN_DEM& place, const DEM_GRID& dem, const REQUEST& request,
                        const SCENE_CORNERS& mirrored);
