/// \file warp.h
/// Files in other reference systems, or on another grid, brought onto a geographic grid of the WGS 84 ellipsoid.

#pragma once

#include <memory>

#include "import/dem/dem_source.h"

/// The grid that suits the file: square spacing, chosen by GDAL to keep the resolution; whole multiples of it.
/// @throws COMPANION_ERROR when PROJ knows no transformation (a missing datum grid, for example)
[[nodiscard]] SAMPLE_GRID GeographicGridFor(const DEM_SOURCE& source);

/// The source on the samples of this grid (extended in all directions as needed), cubic convolution.
/// Heights are carried along as they are. @throws COMPANION_ERROR
[[nodiscard]] std::unique_ptr<DEM_SOURCE> WarpedOnto(const SAMPLE_GRID& grid, const DEM_SOURCE& source);
