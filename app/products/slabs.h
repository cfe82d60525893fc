/// \file slabs.h
/// How much of the image is simulated at once: all of it, or a slab, which is a range of lines, simulated and written
/// before the next one takes its memory. Slabs are for grids that exceed the memory that the run may use; and for all
/// that are large, because pages that are used again need not be cleared by the system, and because a slab is on its
/// way to the disk while the next one is simulated.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"
#include "app/scene/output_sizes.h"
#include "simulation/dem_reach.h"
#include "simulation/scene.h"

struct SLAB_PLAN {
    int lines = 0;  ///< of a slab; the last one may have fewer
    int count = 1;
    bool exceeds_limit = false;  ///< the whole grids would need more memory than the run may use

    [[nodiscard]] bool IsWholeImage() const { return count == 1; }
};

/// Says how many slabs there are, if the memory asks for them.
/// @param bytes_beside  what the run needs beside the grids
/// @param early         whether products may be written before all is simulated
/// @throws ERROR_NO_MEMORY when a slab needs more memory than the machine has left, or not one line fits into
///         MEMORY_LIMIT
[[nodiscard]] SLAB_PLAN PlanSlabs(const REQUEST& request, const OUTPUT_SIZES& sizes, double bytes_beside, bool early);

/// Rows of a grid that takes every factor-th line: all of them, or as many as a slab can have.
[[nodiscard]] int RowsInMemory(const SLAB_PLAN& plan, int factor, int rows_of_grid);

/// The scene of the lines first_line .. end_line - 1: its views tell these rows of the grids in memory, its cells those
/// that reach them.
[[nodiscard]] SCENE SceneOfLines(const SCENE& first_slab, const DEM_REACH& dem_reach, int first_line, int end_line);
