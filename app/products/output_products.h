/// \file output_products.h
/// Stage B for all sizes, and stage C: checks that every point was simulated and writes the products that the
/// configuration names.

#pragma once

#include "app/products/coverage_check.h"
#include "app/simulation_state.h"

struct SIMULATED_IMAGE {
    COVERAGE_GAP gap{};
    SCENE in_memory{};  ///< whose lines are still to be written: the whole image, or its last slab
};

/// Simulates the image, or slab after slab, each of which is written before the next one takes its memory; none is
/// written any more once there is a gap.
[[nodiscard]] SIMULATED_IMAGE SimulateImage(SIMULATION_STATE& state);

/// Phase (cropped to the master image), shift maps, radar DEM and Earth files as raster files; the offsets of the Earth
/// files go into the InSAR pool as well. Of slabs the last one is left to be written.
/// @throws ERROR_PARAMETER for a coverage gap; the image errors. No product appears then.
void SaveProducts(SIMULATION_STATE& state, const SIMULATED_IMAGE& image, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);
