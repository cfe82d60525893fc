/// \file scene_lines.h
/// Scenes of a part of the image's lines: which rows of each grid belong to them, by the grid's factor.

#pragma once

#include "simulation/scene.h"

/// The same memory for other lines: its views tell the rows of the lines first_line .. end_line - 1, of which there are
/// no more than the grids can hold.
[[nodiscard]] SCENE MovedToLines(SCENE scene, int first_line, int end_line);

/// The rows of a scene's grids that belong to the lines first_line .. end_line - 1, which it holds.
[[nodiscard]] SCENE LinesOf(SCENE scene, int first_line, int end_line);
