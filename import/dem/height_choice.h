/// \file height_choice.h
/// To what the heights of the files refer: the option says it, or else the files do.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "import/dem/dem_source.h"

enum class HEIGHT_CHOICE {
    ELLIPSOID,  ///< above the WGS 84 ellipsoid already
    EGM96,      ///< above the EGM96 geoid: to be converted
    AS_IS       ///< the user knows, and takes them as they are
};

/// @param option  "ellipsoid", "egm96", "as-is", or empty when none was given
/// @throws COMPANION_ERROR when nobody says which, when files differ, and for a reference that is not converted
/// The option comes before the files: see ContradictionIn.
[[nodiscard]] HEIGHT_CHOICE ChooseHeights(const std::string& option,
                                          const std::vector<std::unique_ptr<DEM_SOURCE>>& sources);

/// What a file says that the choice does not: "EGM96 height" for heights taken as ellipsoidal ones; mostly empty.
[[nodiscard]] std::string ContradictionIn(HEIGHT_CHOICE choice, const DEM_SOURCE& source);
