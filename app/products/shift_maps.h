/// \file shift_maps.h
/// The range and azimuth shift maps: where each master pixel lies in the slave image.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"
#include "simulation/scene.h"

/// Writes both maps: absolute slave positions or, with relative shifts, slave minus master position (pixels).
/// @throws the image errors
void SaveShiftMaps(const REQUEST& request, const IMAGE_SIZE& size, const SHIFT_GRIDS& shifts);
