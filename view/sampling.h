/// \file sampling.h
/// How many master pixels lie between two columns and two rows of a product.

#pragma once

#include <string>

#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/sidecar/product_kind.h"

struct SAMPLING {
    int columns = 1;
    int rows = 1;
};

/// From the InSAR pool, into which a run writes the factors that its control file forces. A missing key counts as 1.
/// @throws the pool's errors
[[nodiscard]] SAMPLING SamplingOf(PRODUCT product, PARAMETER_POOL& insar_pool);
