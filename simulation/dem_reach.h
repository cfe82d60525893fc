/// \file dem_reach.h
/// Which lines and pixels of the image the cells of the DEM reach: so that a slab of lines walks its own cells only.
/// The answer is for blocks of cells and errs on the side of too many: corners of a block are solved towards the master
/// for two heights, between which azimuth and range pixel run straight to below the margins that are added. A cell that
/// is walked in vain costs time; products do not depend on it, since every cell is solved and filled as in a walk over
/// all. Accuracy: a tenth of what the block spans, and 4 lines, or in range the bend between the two heights. Memory:
/// four numbers per block. Threads: constant after construction.

#pragma once

#include <initializer_list>
#include <vector>

#include "simulation/dem_blocks.h"
#include "simulation/scene.h"

class DEM_REACH {
  public:
    /// @param scene  whose simulated rows and columns are looked at
    explicit DEM_REACH(const SCENE& scene);

    /// Leaves a scene, of the same DEM and area, with the rows and cells that can reach lines first_line .. end_line
    /// - 1, at any range.
    void LimitTo(int first_line, int end_line, SCENE& scene) const;

    /// The same for pixels 0 .. samples - 1 of these lines.
    void LimitTo(int first_line, int end_line, int samples, SCENE& scene) const;

    /// The master's pixel of a place as straight lines over its height.
    struct PIXEL_OF_HEIGHT {
        POINT<double> at_zero;  ///< x: range, y: azimuth pixel
        POINT<double> per_metre;
        double pixels_per_metre;  ///< of range
        double range_m;           ///< the shorter one
        bool known;               ///< the solutions lie within the orbit's data
    };

  private:
    /// Lines or pixels that a block of cells reaches.
    struct SPAN {
        double first;
        double last;
        void Take(double value, double margin);
        void Widen(double margin);
        [[nodiscard]] bool Meets(double from, double end) const { return first < end && last > from - 1; }
    };
    struct REACH {
        SPAN lines;
        SPAN pixels;
    };

    static REACH ReachOf(const DEM_GRID& dem, const DEM_RANGE& block, std::initializer_list<PIXEL_OF_HEIGHT> corners);

    template <class REACHES>
    void Limit(REACHES reaches, SCENE& scene) const;

    DEM_BLOCKS blocks_;
    std::vector<REACH> reach_;  ///< of the blocks, row by row
};
