/// \file area_extension.h
/// How far the simulated area reaches beyond the master image, so that sub-sampled grids cover it to its last pixel.

#pragma once

/// Sub-sampling of one product family, 1 or more; 1 means every pixel.
struct SUBSAMPLING {
    int x = 1;  ///< range, samples
    int y = 1;  ///< azimuth, lines
};

struct SUBSAMPLING_FACTORS {
    SUBSAMPLING shift;
    SUBSAMPLING earth;
    SUBSAMPLING geocoding;
};

struct AREA_EXTENSION {
    bool extended = false;
    int x = 0;  ///< samples added at the far side
    int y = 0;  ///< lines added at the late side
};

/// Shift or Earth factors above 1: their maximum; with a geocoding factor above 1 as well: the sum of all three kinds;
/// geocoding factors alone: these. A factor of 1 adds nothing.
/// @throws ERROR_PARAMETER when an extension exceeds 32 bits
[[nodiscard]] AREA_EXTENSION ExtensionOf(const SUBSAMPLING_FACTORS& factors);
