/// \file kernel_scene.h
/// Everything that the kernel reads, and the grids that it fills, in the kernel's own form.

#pragma once

#include "app/products/result_images.h"
#include "app/scene/radar_pair.h"
#include "app/scene/simulation_area.h"
#include "app/terrain/terrain.h"

/// The scene points into the acquisitions' orbits, the terrain's image and the result images: they must outlive it.
[[nodiscard]] SCENE MakeKernelScene(const REQUEST& request, const ACQUISITIONS& acquisitions, const RADAR_PAIR& pair,
                                    const TERRAIN& terrain, const SCENE_IN_DEM& place, RESULT_IMAGES& images);
