/// \file scene_blocks.h
/// How the rows of a scene are shared out among threads.

#pragma once

#include <vector>

#include "simulation/row_blocks.h"
#include "simulation/scene.h"

/// The blocks of a scene's simulated rows: of about equally many cells where only some are looked at, else
/// of equally many rows; in each block one row at least.
[[nodiscard]] std::vector<ROW_BLOCK> BlocksOf(const SCENE& scene, int threads);
