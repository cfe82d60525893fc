/// \file border_in_dem.h
/// Whether the DEM ends inside the scene, told before the simulation. The coverage check after it stays the judge
/// (products/coverage_check.h).

#pragma once

#include <string>
#include <vector>

#include "app/scene/scene_border.h"

/// One WARNING when a place of the border lies beyond one edge of the DEM on its lowest and on its highest terrain: no
/// sample of the DEM can be seen there. It gives the box that is needed and the box that is there, in degrees.
/// @param dem_file  for the message
void WarnWhereDemEnds(const std::vector<BORDER_PLACE>& border, const DEM_GRID& dem, const std::string& dem_file);
