/// \file sidecars.h
/// The text files beside the products through which GDAL opens them.

#pragma once

#include "app/request/request.h"

/// With VRT_SIDECARS: writes PRODUCT.vrt beside each product that is a regular file, whole or not at all. Without:
/// removes the sidecar that an earlier run left beside a product and that no longer describes it. A file that is no
/// sidecar of a product stays. What can not be written is told at WARNING: the products are complete.
void BringSidecarsUpToDate(const REQUEST& request);
