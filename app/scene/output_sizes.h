/// \file output_sizes.h
/// The sizes of the outputs, with their checks. Nothing is allocated before they pass.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"

struct OUTPUT_SIZES {
    IMAGE_SIZE simulated{};  ///< the master image plus the extension
    IMAGE_SIZE shift{};      ///< of the shift maps, when wanted
    IMAGE_SIZE earth{};      ///< of the Earth files and of the radar DEM, when wanted
};

/// @param image      the master image
/// @param simulated  the same plus the extension
/// @throws ERROR_ALGORITHM when the extension is not enough, or a grid does not cover the image or the geocoding grid
[[nodiscard]] OUTPUT_SIZES SizeOutputs(const REQUEST& request, const IMAGE_SIZE& image, const IMAGE_SIZE& simulated);

/// Every s-th sample and t-th line, one more than needed to cover the master image. @throws as SizeOutputs
[[nodiscard]] IMAGE_SIZE SizeShiftMatrices(const REQUEST& request, const IMAGE_SIZE& image,
                                           const IMAGE_SIZE& simulated);
/// The Earth coordinate files and the radar DEM share this size. @throws as SizeOutputs
[[nodiscard]] IMAGE_SIZE SizeEarthMatrices(const REQUEST& request, const IMAGE_SIZE& image,
                                           const IMAGE_SIZE& simulated);
