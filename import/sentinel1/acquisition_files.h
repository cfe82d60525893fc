/// \file acquisition_files.h
/// What the files of one Sentinel-1 acquisition say together: the annotation, and an orbit file if there is one.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "import/sentinel1/annotation.h"
#include "import/sentinel1/image_grid.h"

struct S1_ACQUISITION {
    S1_ANNOTATION image;
    IMAGE_GRID grid;
    ORBIT_TABLE orbit;                      ///< the annotation's own, or the orbit file's
    std::vector<UTC_STATE_VECTOR> vectors;  ///< those of it that the image needs
};

/// @param orbit_file  empty: the annotation's own state vectors, all of them
/// @param burst       counted from 1; none: the whole swath
/// @throws COMPANION_ERROR for broken files, an orbit of another satellite, or one that does not cover the image
[[nodiscard]] S1_ACQUISITION ReadSentinel1(const std::string& annotation, const std::string& orbit_file,
                                           const std::optional<int>& burst);
