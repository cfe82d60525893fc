/// \file result_images.h
/// The end of stage A: memory for the grids that the kernel fills.

#pragma once

#include <array>

#include "app/products/slabs.h"
#include "app/request/request.h"
#include "app/scene/output_sizes.h"
#include "lib/baselib/image/mem_mgr.h"

/// Only those exist whose product is wanted, and the mask.
struct RESULT_IMAGES {
    MEM_MGR mask;
    MEM_MGR phase;
    MEM_MGR range_shift;
    MEM_MGR azimuth_shift;
    MEM_MGR x_earth;
    MEM_MGR y_earth;
    MEM_MGR z_earth;
    MEM_MGR height;
    std::array<MEM_MGR, 3> normal;
};

/// IFGRM_INVALID, the value that the phase starts with; 0 without it.
/// @throws ERROR_ARGUMENT for a text that is no number
[[nodiscard]] float ReadInitialPhase(const REQUEST& request);

/// Allocates and initialises, in this order: mask, phase, shift matrices, Earth coordinates, radar DEM, for the whole
/// image or for a slab of it. The phase starts with the initial value, everything else with 0.
/// @throws ERROR_NO_MEMORY, or the text "error in thread execution" when a filling thread failed
[[nodiscard]] RESULT_IMAGES AllocateResultImages(const REQUEST& request, const OUTPUT_SIZES& sizes,
                                                 const SLAB_PLAN& slabs, float initial_phase);
