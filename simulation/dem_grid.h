/// \file dem_grid.h
/// The DEM as a grid: sample indices to Earth-fixed positions and back.
/// Indices: column 0, row 0 is the sample at (x0, y0), the north-west corner; rows run south, columns east.
/// Frame of the Cartesian positions: that of the orbits (Earth-fixed, metres).
/// Threads: read-only.

#pragma once

#include <optional>
#include <string>

#include "geometry/geodetic.h"
#include "geometry/utm_projection.h"
#include "lib/baselib/containers/records.h"
#include "lib/baselib/image/grid_view.h"
#include "simulation/dem_sample.h"

enum class GRID_KIND {
    GEO,     ///< degrees
    UTM,     ///< metres
    REFUSED  ///< anything else
};
/// "GEO" or "UTM", capitals or not.
[[nodiscard]] GRID_KIND GridKindOf(const std::string& format);

struct DEM_GRID {
    std::string kind;  ///< as GridKindOf reads it
    int rows = 0;
    int columns = 0;
    GRID_VIEW<const short> heights{};       ///< metres, 16-bit samples; or else
    GRID_VIEW<const float> real_heights{};  ///< metres, 32-bit reals
    double height_offset_m = 0.0;           ///< added to every sample
    double x0 = 0.0;                        ///< longitude (degrees) or easting (metres) of column 0
    double y0 = 0.0;                        ///< latitude or northing of row 0
    double dx = 0.0;                        ///< spacing of the columns, positive
    double dy = 0.0;                        ///< spacing of the rows, positive; row r lies at y0 - r dy
    GEODETIC_PARAMETERS geodetic{};
    std::optional<UTM_PROJECTION> utm{};  ///< present for a "UTM" grid

    /// Height of a sample of either kind, without the offset; kDemVoid_m for a real that is no height.
    [[nodiscard]] float Height(int column, int row) const {
        return real_heights ? HeightOf(real_heights[row][column]) : HeightOf(heights[row][column]);
    }
};

/// DEM sample to longitude, latitude (radians) on the DEM's own ellipsoid and height (metres, offset included). Indices
/// and errors as below.
[[nodiscard]] GEOGRAPHIC GeographicOfDemSample(const DEM_GRID& dem, int column, int row);

/// DEM sample to Earth-fixed position; the height of the sample, offset included, if asked for.
/// A "GEO" index must lie inside the grid (not checked). A "UTM" index may lie outside: the position follows the grid's
/// lines, the height is that of the nearest sample.
/// Errors: another kind of grid is logged at ALARM, then ERROR_DATA.
void Get_Earth_Position_From_DEM(const DEM_GRID& dem, int column, int row, double& x_m, double& y_m, double& z_m,
                                 float* height_m = nullptr);

/// Geographic position to fractional indices of a "GEO" grid. One whole turn at most is taken off or added; a caller
/// that needs the turn in which the DEM is written uses LocateInDem.
/// Errors: a "UTM" grid is logged at ALARM, then ERROR_NOT_IMPLEMENTED; another kind of grid: ERROR_DATA.
void Get_Local_DEM_From_GEO(const DEM_GRID& dem, double& column, double& row, double longitude_deg,
                            double latitude_deg);

/// Earth-fixed position (frame of the orbits) to fractional indices (x: column, y: row) of a "GEO" or "UTM" grid:
/// through the inverse of the datum onto the DEM's own ellipsoid, then onto the map. A geographic column is moved by
/// whole turns to the value nearest the DEM's middle, whatever range of longitudes (-180..180, 0..360, above 180) the
/// DEM is written in: a point just outside the western edge has a small negative column.
[[nodiscard]] POINT<double> LocateInDem(const DEM_GRID& dem, const VECTOR_3D<double>& point_m);
