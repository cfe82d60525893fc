/// \file earth_positions.h
/// Where the pixels of the run's x, y, z files lie on the map.

#pragma once

#include <string>
#include <vector>

/// Geographic coordinates on WGS84, degrees, row by row. Longitudes run on across the 180 degree meridian: they lie
/// within 180 degrees of that of the centre pixel, which lies in -180..180.
struct EARTH_POSITIONS {
    int columns = 0;
    int rows = 0;
    std::vector<double> longitudes_deg;
    std::vector<double> latitudes_deg;
};

struct EARTH_FILES {
    std::string x;
    std::string y;
    std::string z;
    std::string pool;  ///< the InSAR pool: x_earth_offset, y_earth_offset, z_earth_offset, metres
};

/// @throws COMPANION_ERROR for files of different sizes, of less than 2 x 2 pixels, a missing offset, a pixel without a
///         value or in the Earth's middle; what the reading throws
[[nodiscard]] EARTH_POSITIONS ReadEarthPositions(const EARTH_FILES& files);
