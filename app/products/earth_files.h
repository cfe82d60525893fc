/// \file earth_files.h
/// The Earth x, y and z files: 32-bit differences to one offset each, so that metres keep their decimals.

#pragma once

#include "app/request/request.h"
#include "simulation/scene.h"

/// Writes the three files and puts their offsets (metres) into the InSAR pool as x_earth_offset, y_earth_offset and
/// z_earth_offset: whoever reads a file must add its offset.
/// @throws the image errors
void SaveEarthFiles(const EARTH_REQUEST& files, const EARTH_GRIDS& grids, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);
