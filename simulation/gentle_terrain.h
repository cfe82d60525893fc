/// \file gentle_terrain.h
/// Where the ground is too gentle to lay over or to cast a shadow, and reaches all of the image: the lines there need
/// no look at their profiles (layover_shadow.h), which takes far longer than a look at the heights. A slope g along the
/// line of sight keeps the order of ranges while it rises by less than tan(incidence), and faces the satellite while it
/// falls by less than cot(incidence). The slope of a profile between two columns of the DEM is at most the root of the
/// sum of the squares of the greatest slopes along rows and along columns around it. Blocks whose greatest slope stays
/// 5 % below both bounds, towards master and slave, are gentle; 5 % are more than the incidence changes within a block.
/// Threads: constant after construction.

#pragma once

#include <vector>

#include "simulation/dem_blocks.h"

/// Heights between which a sample is terrain, metres above the DEM's ellipsoid; others are voids.
struct TERRAIN_BOUNDS {
    double lowest_m;
    double highest_m;
    [[nodiscard]] bool Hold(double height_m) const { return height_m >= lowest_m && height_m <= highest_m; }
};

class GENTLE_TERRAIN {
  public:
    /// @param samples  columns of the image
    GENTLE_TERRAIN(const SCENE& scene, const TERRAIN_BOUNDS& bounds, int samples);

    /// Whether lines first_line .. end_line - 1, which reach the cells of a scene that DEM_REACH has limited to them,
    /// have flags of zero only.
    [[nodiscard]] bool Holds(const SCENE& cells, int first_line, int end_line) const;

    /// What a run of samples at the end of the DEM reaches, at every height of its block.
    struct REACH {
        double first_line;
        double last_line;
        double first_pixel;
        double last_pixel;
    };

  private:
    DEM_BLOCKS blocks_;
    int samples_;
    std::vector<unsigned char> gentle_;  ///< of the blocks, row by row
    std::vector<REACH> ends_;            ///< where profiles end
};
