/// \file product_info.h
/// `velmora-view info`: what a product holds, in numbers.

#pragma once

#include <optional>
#include <string>

#include "lib/baselib/sidecar/product_kind.h"
#include "view/raster_file.h"

struct STATISTICS {
    long long count = 0;    ///< pixels with a value
    long long without = 0;  ///< pixels without
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    double deviation = 0.0;  ///< root mean square difference to the mean
};

[[nodiscard]] STATISTICS StatisticsOf(const RASTER_FILE& raster, std::optional<double> invalid);

/// The pool's entry of a coordinate's offset (x_earth_offset, ...).
/// @return nothing for other products, and for a pool without the entry
[[nodiscard]] std::optional<double> OffsetOf(const PRODUCT_KIND* kind, const std::string& pool_path);

/// @param pool_path  the InSAR pool; empty: none
[[nodiscard]] std::string InfoText(const RASTER_FILE& raster, const PRODUCT_KIND* kind, const std::string& pool_path,
                                   std::optional<double> invalid);
