/// \file acquisition_pool.h
/// A master or slave pool of a Sentinel-1 image. One pool serves in either place: it has the ellipsoid that masters
/// need and the look direction that slaves need, and the entries of the permanent-scatterer mode, from which
/// `pair` and `dem --around` take size and first times.

#pragma once

#include <string>
#include <vector>

#include "import/sentinel1/annotation.h"
#include "import/sentinel1/image_grid.h"

/// @param path  an empty file. @throws the pool errors
void WriteAcquisitionPool(const std::string& path, const S1_ANNOTATION& image, const IMAGE_GRID& grid,
                          const ORBIT_TABLE& orbit, const std::vector<UTC_STATE_VECTOR>& vectors);
