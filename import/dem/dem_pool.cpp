#include "import/dem/dem_pool.h"

#include <cmath>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"

DEM_EDGES_OF_POOL EdgesOf(const SAMPLE_GRID& grid, const MAP_REFERENCE& map) {
    constexpr double kHalfTurn_deg = 180.0;
    DEM_EDGES_OF_POOL edges{grid.y0, grid.Y(static_cast<double>(grid.rows)), grid.x0,
                            grid.X(static_cast<double>(grid.columns))};
    if (map.kind != MAP_KIND::GEO) return edges;
    const double turn_deg = std::floor((edges.left + kHalfTurn_deg) / kTurn_deg) * kTurn_deg;
    edges.left -= turn_deg;
    edges.right -= turn_deg;
    if (edges.right > kHalfTurn_deg && edges.right - kTurn_deg < edges.left) edges.right -= kTurn_deg;
    return edges;
}

void WriteDemPool(const std::string& path, const SAMPLE_GRID& grid, const MAP_REFERENCE& map,
                  const DEM_HEIGHTS_OF_POOL& heights) {
    const DEM_EDGES_OF_POOL edges = EdgesOf(grid, map);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path);
    pool.Change("dem_correction", 0.0, {heights.comment});
    pool.Change("grid_format", std::string(map.kind == MAP_KIND::UTM ? "UTM" : "GEO"));
    pool.Change("upper_northing", edges.upper);
    pool.Change("lower_northing", edges.lower);
    pool.Change("left_easting", edges.left);
    pool.Change("right_easting", edges.right);
    pool.Change("ellipsoid_type", std::string("WGS84"));
    if (map.kind == MAP_KIND::UTM) {
        pool.Change("utm_zone", map.utm_zone);
        pool.Change("utm_hemisphere", std::string(map.southern ? "S" : "N"));
    }
    pool.Change("dem_valid", heights.valid);
    if (heights.as_float) pool.Change("dem_pixel_type", std::string("flt_6"));
    pool.Update();
}
