/// \file contested_pixels.h
/// Pixels that a thread holds but does not own: kept while the threads run, settled afterwards (see pixel_ownership.h).
/// Threads: each list belongs to one thread while it runs; settling belongs to one thread after all have ended.

#pragma once

#include <vector>

#include "lib/baselib/vectors/lane_count.h"
#include "simulation/pixel_layers.h"
#include "simulation/pixel_ownership.h"

struct CONTESTED_PIXEL {
    int row;
    int column;
    PIXEL_VALUES values;  ///< of all dense layers, then of all sparse ones
};

using CONTESTED_PIXELS = std::vector<CONTESTED_PIXEL>;

/// Keeps the lanes of a set (bit i: pixel column + i).
/// @param values  of the first layers, one element per lane
void KeepPixels(CONTESTED_PIXELS& list, int row, int column, unsigned lanes, const float (*values)[kLanes], int layers);

/// Writes the kept pixels that no lower block has written.
/// @param lists  one per block, in the order in which its thread kept them
/// @param mask   1: written by its owner
void SettleContestedPixels(const std::vector<CONTESTED_PIXELS>& lists, const PIXEL_OWNERSHIP& ownership,
                           const PIXEL_LAYERS& layers, const GRID_VIEW<unsigned char>& mask);
