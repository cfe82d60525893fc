/// \file wanted_products.h
/// The one list of the files that a run writes: keys, paths, sizes, types of pixels.

#pragma once

#include <vector>

#include "app/request/request.h"
#include "app/scene/output_sizes.h"
#include "lib/baselib/image/product_file.h"

/// In the order in which they are opened. Each one's key is that of its kind (product_kind.h).
/// @param image  the master image
[[nodiscard]] std::vector<PRODUCT_REQUEST> WantedProducts(const REQUEST& request, const IMAGE_SIZE& image,
                                                          const OUTPUT_SIZES& sizes);
