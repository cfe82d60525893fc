/// \file extension_in_dem.h
/// Whether the DEM reaches to the end of an area that sub-sampling factors have extended beyond the image's own size: a
/// mistyped factor shall cost a second, not the simulation of thousands of millions of points.

#pragma once

#include "app/request/request.h"
#include "app/scene/simulation_area.h"

/// Looks at areas that are extended by more than the image itself. Others are left to the coverage check.
/// @throws ERROR_PARAMETER when no terrain height at the area's last pixel lies in the DEM, after the coverage check's
///         line and one with the factors
void RequireDemUnderExtension(const REQUEST& request, const IMAGE_SIZE& image, const ACQUISITION_SCENE& master,
                              const IMAGE_TO_DEM& locate, const DEM_GRID& dem);
