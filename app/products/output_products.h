/// \file output_products.h
/// Stage C: checks that every point was simulated and writes the products that the configuration names.

#pragma once

#include "app/simulation_state.h"

/// Phase (cropped to the master image), shift maps, radar DEM and Earth files as raster files; the offsets of the Earth
/// files go into the InSAR pool as well.
/// @throws ERROR_PARAMETER for a coverage gap, before any product is written; the image errors
void SaveProducts(const SIMULATION_STATE& state, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);
