/// \file triangle_filler.h
/// Fills the master pixels inside a DEM cell, between four solved corners.
/// Corners: 0 (row r, column c), 1 (r, c+1), 2 (r+1, c), 3 (r+1, c+1); the cell is cut along the diagonal from 1 to 2,
/// into the triangles (0, 1, 2) and (1, 2, 3). A pixel on the diagonal belongs to the first.
/// Inside: the part areas of triangle.h exceed the whole by at most the tolerance. That is where each barycentric
/// coordinate lies within -tolerance / 2 and 1 + tolerance / 2, since what is negative counts twice: three planes over
/// the image decide for all pixels of a triangle. Values: linear between the three corners. First come first served
/// within a thread, pixel_ownership.h between threads. Threads: one object per thread.

#pragma once

#include "simulation/claimed_pixels.h"
#include "simulation/prepared_scene.h"

class TRIANGLE_FILLER {
  public:
    /// @param block  of DEM rows, the thread's own
    TRIANGLE_FILLER(PREPARED_SCENE& prepared, int block);

    /// @param i  element of the rows at which corners 0 and 2 stand; all four must be solved
    /// A triangle below 1e-5 square pixels is logged at WARNING, once for every pixel that is asked, and holds nothing.
    void FillCell(const RADAR_ROW& upper, const RADAR_ROW& lower, int i);

    /// Switches the vector code of this machine off or on. Both fill the same pixels; their values agree to rounding.
    void UseVectors(bool use) { use_vectors_ = use && MachineHasVectors(); }
    [[nodiscard]] static bool MachineHasVectors();

  private:
    static constexpr int kLanes = PIXEL_LAYERS::kLanes;

    struct CELL;
    struct TRIANGLE_PLANES;

    void FillPixelByPixel(const CELL& cell);
    void FillWithVectors(const CELL& cell);
    void Keep(int row, int column, unsigned lanes, const float (*values)[kLanes]);
    [[nodiscard]] int TriangleAround(const CELL& cell, int row, int column) const;
    void WriteOrKeep(const CELL& cell, int row, int column, int triangle, bool owned);

    const MASTER_GRIDS& image_;
    const PIXEL_LAYERS& layers_;
    const PIXEL_OWNERSHIP& ownership_;
    CONTESTED_PIXELS& contested_;
    CLAIMED_PIXELS claimed_;
    int block_;
    bool use_vectors_;
};
