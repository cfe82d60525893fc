#include "app/terrain/dem_description.h"

#include <strings.h>

#include <limits>
#include <string>

#include "app/keys/refusal.h"
#include "app/terrain/dem_datum.h"
#include "geometry/utm_projection.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// The edges of the grid: degrees for "GEO", metres otherwise.
struct DEM_EDGES {
    double north = 0.0;
    double south = 0.0;
    double west = 0.0;
    double east = 0.0;
};

constexpr double kWholeTurn_deg = 360.0;

double ReadEdge(PARAMETER_POOL& pool, const char* key) {
    const double value = pool.Get<double>(key);
    RequireFinite({pool.FileName(), key}, value);
    return value;
}

void ReadEastings(DEM_EDGES& edges, const std::string& kind, PARAMETER_POOL& pool) {
    edges.west = ReadEdge(pool, "left_easting");
    edges.east = ReadEdge(pool, "right_easting");
    if (kind != "GEO") {
        Log().Message(LOGGING_LEVEL::INFO, "            Left Easting: %f ", edges.west);
        Log().Message(LOGGING_LEVEL::INFO, "            Right Easting: %f ", edges.east);
        return;
    }
    Log().Message(LOGGING_LEVEL::INFO, "        Left Easting: %f ", edges.west);
    if (edges.west > edges.east) {  // the grid crosses the 180 degree meridian
        const double unwrapped = edges.east + kWholeTurn_deg;
        Log().Message(LOGGING_LEVEL::INFO, "        Right Easting: %f; unwrapped to: %f ", edges.east, unwrapped);
        edges.east = unwrapped;
    } else {
        Log().Message(LOGGING_LEVEL::INFO, "        Right Easting: %f ", edges.east);
    }
}

DEM_EDGES ReadEdges(DEM_GRID& grid, PARAMETER_POOL& pool) {
    grid.height_offset_m = pool.Get<double>("dem_correction");
    RequireFinite({pool.FileName(), "dem_correction"}, grid.height_offset_m);
    Log().Message(LOGGING_LEVEL::INFO, "        Dem Correction: %f ", grid.height_offset_m);
    grid.kind = pool.Get<STRING>("grid_format").ToStd();
    RequireText(grid.kind);
    Log().Message(LOGGING_LEVEL::INFO, "        Grid Format: %s ", grid.kind.c_str());
    DEM_EDGES edges;
    edges.north = ReadEdge(pool, "upper_northing");
    edges.south = ReadEdge(pool, "lower_northing");
    Log().Message(LOGGING_LEVEL::INFO, "        Upper Northing: %f ", edges.north);
    Log().Message(LOGGING_LEVEL::INFO, "        Lower Northing: %f ", edges.south);
    ReadEastings(edges, grid.kind, pool);
    return edges;
}

void CheckEdges(const DEM_EDGES& edges, const PARAMETER_POOL& pool) {
    if (edges.north <= edges.south)
        RefuseValue({pool.FileName(), "upper_northing"}, edges.north, "is not above lower_northing");
    if (edges.east <= edges.west)
        RefuseValue({pool.FileName(), "right_easting"}, edges.east, "is not above left_easting");
}

UTM_PROJECTION ReadProjection(const DEM_GRID& grid, PARAMETER_POOL& pool) {
    const int zone = pool.Get<int>("utm_zone");
    if (zone < 1 || zone > 60) RefuseValue({pool.FileName(), "utm_zone"}, std::to_string(zone), "is outside 1..60");
    std::string hemisphere = "N";
    if (pool.FindKey("utm_hemisphere")) hemisphere = pool.Get<STRING>("utm_hemisphere").ToStd();
    if (hemisphere != "N" && hemisphere != "S")
        RefuseValue({pool.FileName(), "utm_hemisphere"}, "\"" + hemisphere + "\"", "is neither \"N\" nor \"S\"");
    return UTM_PROJECTION(grid.geodetic.a_m, grid.geodetic.e2, zone, hemisphere == "S");
}

/// Row 0 of the raster is the northern edge; 16-bit signed heights in metres.
void MapDem(SIMULATION_STATE& state) {
    const std::string& file = state.configuration.dem_file;
    state.dem.MapFileChecked(file, ACCESS_MODE::READ_ONLY, PIXEL_TYPE::INT_16);
    constexpr long long kMostSamples = std::numeric_limits<int>::max();
    if (state.dem.Columns() > kMostSamples || state.dem.Rows() > kMostSamples) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: a DEM of %lld columns and %lld rows is too large", file.c_str(),
                      state.dem.Columns(), state.dem.Rows());
        throw ERROR_IMAGE();
    }
    DEM_GRID& grid = state.scene.dem;
    grid.columns = static_cast<int>(state.dem.Columns());
    grid.rows = static_cast<int>(state.dem.Rows());
    grid.heights = ViewOf<short>(state.dem);
}

}  // namespace

void ReadDemDescription(SIMULATION_STATE& state, PARAMETER_POOL& dem_pool) {
    DEM_GRID& grid = state.scene.dem;
    Log().Message(LOGGING_LEVEL::INFO, " - Open dem parameter pool: .. %s", state.configuration.dem_pool.c_str());
    const DEM_EDGES edges = ReadEdges(grid, dem_pool);
    CheckEdges(edges, dem_pool);
    grid.geodetic = ReadGeodeticParameters(dem_pool);
    if (strcasecmp(grid.kind.c_str(), "UTM") == 0) grid.utm = ReadProjection(grid, dem_pool);

    Log().Message(LOGGING_LEVEL::INFO, "   a. Map (readonly) dem: .... %s ", state.configuration.dem_file.c_str());
    MapDem(state);
    grid.x0 = edges.west;
    grid.y0 = edges.north;
    grid.dx = (edges.east - edges.west) / grid.columns;
    grid.dy = (edges.north - edges.south) / grid.rows;
    Log().Message(LOGGING_LEVEL::INFO, "   b. Dem resolution in x: ... %f", grid.dx);
    Log().Message(LOGGING_LEVEL::INFO, "   c. Dem resolution in y: ... %f", grid.dy);
    Log().Message(LOGGING_LEVEL::INFO, " ");
}
