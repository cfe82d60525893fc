/// \file cell_filling.h
/// The loop over pixels: the cells between two DEM rows into the grids, compiled once per vector level.
/// Threads: a FILLING belongs to one thread; what its pointers reach is written by the rules of pixel_ownership.h.

#pragma once

#include "lib/baselib/vectors/vector_level.h"
#include "simulation/claimed_pixels.h"
#include "simulation/contested_pixels.h"
#include "simulation/pixel_layers.h"
#include "simulation/pixel_ownership.h"

/// Corner values of the upper [0] and the lower [1] row of samples; cell i stands between elements i and i + 1.
struct CORNER_ROWS {
    const double* values[kQuantities][2];
    const double* normals[2][3];  ///< of the first and the second triangles, x, y, z; only where a layer takes them
};

/// Where a thread's pixels go.
struct FILLING {
    const PIXEL_LAYER* layers;  ///< the dense ones first
    int dense_count;
    int plane_count;  ///< layers before those of the normals, which are the same all over a triangle, if these are
                      ///< sparse
    int layer_count;
    const unsigned char* sparse_row;  ///< 1: some sparse layer takes pixels of this row; element 0 is first_row
    int first_row;                    ///< pixels to be filled: these rows
    int last_row;
    int last_column;  ///< and the columns from 0
    CLAIMED_PIXELS* claimed;
    const PIXEL_OWNERSHIP* ownership;
    int block;
    CONTESTED_PIXELS* contested;
};

/// @param wanted  1 for the cells to be filled, of which there are count
/// @return how many pixels were asked of triangles that are only lines
VELMORA_AT_EVERY_LEVEL(long long FillCells(const FILLING& filling, const CORNER_ROWS& corners,
                                           const unsigned char* wanted, int count))
