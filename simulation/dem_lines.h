/// \file dem_lines.h
/// Which lines of the image the cells of the DEM reach: so that a slab of lines walks its own cells only.
/// The answer is for blocks of cells and errs on the side of too many: corners of a block are solved towards the master
/// for two heights, between which the azimuth pixel runs straight to well below the margin that is added. A cell that
/// is walked in vain costs time; products do not depend on it, since every cell is solved and filled as in a walk over
/// all. Accuracy: the margin is 4 lines and a tenth of what the block spans. Memory: two numbers per block.
/// Threads: constant after construction.

#pragma once

#include <initializer_list>
#include <vector>

#include "simulation/dem_blocks.h"
#include "simulation/scene.h"

class DEM_LINES {
  public:
    /// @param scene  whose simulated rows and columns are looked at
    explicit DEM_LINES(const SCENE& scene);

    /// Leaves a scene, of the same DEM and area, with the rows and cells that can reach lines first_line .. end_line
    /// - 1.
    void LimitTo(int first_line, int end_line, SCENE& scene) const;

    /// The master's azimuth pixel of a place as a straight line over its height.
    struct LINE_OF_HEIGHT {
        double at_zero;
        double per_metre;
        bool known;  ///< the solution lies within the orbit's data
    };

  private:
    /// Lines that a block of cells reaches.
    struct SPAN {
        double first;
        double last;
    };

    static SPAN SpanOf(const DEM_GRID& dem, const DEM_RANGE& block, std::initializer_list<LINE_OF_HEIGHT> corners);

    DEM_BLOCKS blocks_;
    std::vector<SPAN> spans_;  ///< of the blocks, row by row
};
