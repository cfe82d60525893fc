/// \file pair_inputs.h
/// What the inputs of a pair have to be to each other.

#pragma once

#include <string>

#include "import/pools/acquisition.h"

/// NAME.ras beside NAME.pool. @throws COMPANION_ERROR for another name, or when there is no such file
[[nodiscard]] std::string DemRasterBeside(const std::string& dem_pool);

/// Both images are to be of one kind: the same side, the same carrier (to 1 %: no other band).
/// @throws COMPANION_ERROR
void RequireOneKind(const ACQUISITION_OF_POOL& master, const ACQUISITION_OF_POOL& slave);
