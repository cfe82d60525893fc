/// \file triangle_filler.h
/// Fills the master pixels inside DEM cells, between four solved corners each.
/// Corners: 0 (row r, column c), 1 (r, c+1), 2 (r+1, c), 3 (r+1, c+1); the cell is cut along the diagonal from 1 to 2,
/// into the triangles (0, 1, 2) and (1, 2, 3). A pixel on the diagonal belongs to the first.
/// Values: linear between the three corners. First come first served within a thread, pixel_ownership.h between
/// threads. Threads: one object per thread.

#pragma once

#include <vector>

#include "simulation/cell_filling.h"
#include "simulation/prepared_scene.h"

class TRIANGLE_FILLER {
  public:
    /// @param block  of DEM rows, the thread's own
    TRIANGLE_FILLER(PREPARED_SCENE& prepared, int block);

    /// @param wanted  1: fill the cell between this element of both rows and the next; all corners of it must be solved
    /// A triangle below 1e-5 square pixels is logged at WARNING, once for every pixel that is asked, and holds nothing.
    void FillRow(const RADAR_ROW& upper, const RADAR_ROW& lower, const std::vector<unsigned char>& wanted);

    /// Marks the pixels that the thread has filled and owns as simulated. To be called once, after the last row.
    void WriteMask() const;

  private:
    void FindNormals(const RADAR_ROW& upper, const RADAR_ROW& lower, const std::vector<unsigned char>& wanted,
                     CORNER_ROWS& corners);

    const GRID_VIEW<unsigned char>& mask_;
    const PIXEL_OWNERSHIP& ownership_;
    int block_;
    CLAIMED_PIXELS claimed_;
    FILLING filling_;
    bool wants_normals_;
    VECTOR_LEVEL vector_level_;
    std::vector<double> normals_[2][3]{};  ///< of a row of cells; empty when not wanted
    decltype(&plain::FillCells) fill_cells_;
};
