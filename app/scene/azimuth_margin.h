/// \file azimuth_margin.h
/// How far the outermost tiles of the simulation area reach beyond the image in azimuth.
/// A tile's edge is a straight line in DEM coordinates, the true first or last line of the image is not: on real
/// geometry it lies 13 m and more outside, at high latitudes hundreds of metres. And a cell is found by its corners, so
/// one that only touches the image may have none of them inside. Without the margin such cells are missed and border
/// pixels stay empty; with it a few more cells are looked at.

#pragma once

#include "app/scene/image_to_dem.h"
#include "simulation/scene.h"

/// Seconds on the master orbit's axis.
struct AZIMUTH_INTERVAL {
    double first_s = 0.0;
    double last_s = 0.0;
};

/// The image's azimuth interval, extended on both sides by 10 lines, or 40 m along track if that is more, plus one cell
/// diagonal and the bend of the border line; kept inside the orbit's data.
/// @param tiles  number of straight edges that a border line consists of
AZIMUTH_INTERVAL ExtendedAzimuthInterval(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate, int tiles);
