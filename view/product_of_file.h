/// \file product_of_file.h
/// Which product a raster file holds: the header does not tell.

#pragma once

#include <string>

#include "lib/baselib/sidecar/product_kind.h"

/// The first that knows: the option's text (a key as SIMU_PHASE), the file's sidecar, the file's name (simu_phase.ras,
/// scene7_h_earth.ras: the key anywhere in it, in any case).
/// @return null when nothing tells: the file is shown as plain numbers
/// @throws COMPANION_ERROR for an option that is no product's key
[[nodiscard]] const PRODUCT_KIND* ProductOfFile(const std::string& path, const std::string& option);

/// All keys, for a message: "SIMU_PHASE, RG_COREG, ...".
[[nodiscard]] std::string ProductKeys();
