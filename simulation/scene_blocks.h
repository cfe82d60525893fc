/// \file scene_blocks.h
/// How the rows of a scene are shared out among threads.

#pragma once

#include <vector>

#include "simulation/row_blocks.h"
#include "simulation/scene.h"

/// The blocks of a scene's simulated rows: by the cells that it looks at, in each block one row at least.
[[nodiscard]] std::vector<ROW_BLOCK> BlocksOf(const SCENE& scene, int threads);
