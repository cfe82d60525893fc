/// \file reference_system.h
/// What a file's reference system says about its positions and heights.

#pragma once

#include <ogr_spatialref.h>

#include <string>

enum class MAP_KIND {
    GEO,   ///< geographic degrees from Greenwich on the WGS 84 ellipsoid
    UTM,   ///< metres on the WGS 84 ellipsoid
    OTHER  ///< anything else: to be warped
};

struct MAP_REFERENCE {
    MAP_KIND kind = MAP_KIND::OTHER;
    int utm_zone = 0;
    bool southern = false;
    std::string name;  ///< as the file calls it

    [[nodiscard]] bool IsSameMap(const MAP_REFERENCE& other) const {
        return kind == other.kind && utm_zone == other.utm_zone && southern == other.southern;
    }
};

enum class HEIGHT_REFERENCE { UNKNOWN, ELLIPSOID, EGM96, OTHER };

struct HEIGHTS_OF_FILE {
    HEIGHT_REFERENCE reference = HEIGHT_REFERENCE::UNKNOWN;
    std::string name;  ///< of the vertical datum, as the file calls it
    double metres_per_unit = 1.0;
};

[[nodiscard]] MAP_REFERENCE MapReferenceOf(const OGRSpatialReference& system);

/// A compound system names its vertical datum; a geographic system of three axes means the ellipsoid.
[[nodiscard]] HEIGHTS_OF_FILE HeightsOf(const OGRSpatialReference& system);

/// The horizontal part alone, in the axis order of rasters (east, north).
[[nodiscard]] OGRSpatialReference HorizontalPart(const OGRSpatialReference& system);
