/// \file geocode.h
/// `velmora-view geocode`: a product of radar geometry on the map, by GDAL's geolocation arrays.

#pragma once

#include <optional>

#include "view/earth_positions.h"
#include "view/gdal_output.h"
#include "view/raster_file.h"
#include "view/sampling.h"

/// Pixel (i, j) of the product lies at (i, j) x product / earth of the positions.
struct GRIDS {
    SAMPLING product;
    SAMPLING earth;
};

/// The product on a north-up grid of geographic WGS84 coordinates, NaN where it has no pixel. The spacing
/// is that of map_spacing.h. Each map pixel gets the value of the nearest radar pixel; where several
/// radar pixels lie at one place (layover), one of them.
/// @throws COMPANION_ERROR when the positions do not cover the product
[[nodiscard]] DATASET MapOfProduct(const RASTER_FILE& raster, const PRODUCT_KIND& kind,
                                   const EARTH_POSITIONS& positions, const GRIDS& grids, std::optional<double> invalid);

/// A compressed GeoTIFF.
void SaveGeoTiff(GDALDataset& map, const std::string& path);

/// The map in the picture's colours, transparent where it has no value, for a globe.
void SaveKmz(GDALDataset& map, const PRODUCT_KIND& kind, const std::string& path);
