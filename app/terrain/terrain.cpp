#include "app/terrain/terrain.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "app/keys/mistyped_pool_keys.h"
#include "app/keys/pool_values.h"
#include "app/say.h"
#include "app/terrain/dem_datum.h"
#include "geometry/utm_projection.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

/// The edges of the grid: degrees for "GEO", metres otherwise.
struct DEM_EDGES {
    double north = 0.0;
    double south = 0.0;
    double west = 0.0;
    double east = 0.0;
};

std::string ReadGridFormat(PARAMETER_POOL& pool) {
    constexpr POOL_KEY<STRING> kKey = "grid_format";
    const std::string format = Read<STRING>(pool, kKey).ToStd();
    const VALUE_SOURCE source = SourceOf(pool, kKey);
    RequireText(source, format, kKey.row.range);
    Say("        Grid Format: %s ", format.c_str());
    // The run ends where the first position is looked up in such a grid, with a line that knows no file and no key.
    if (GridKindOf(format) == GRID_KIND::REFUSED) LogRefusedText(source, format, kKey.row.range);
    return format;
}

/// @param degrees  the grid may cross the 180 degree meridian: its eastern edge then is one turn farther
double ReadEasternEdge(PARAMETER_POOL& pool, double west, bool degrees) {
    constexpr double kWholeTurn_deg = 360.0;
    const double east = Read<double>(pool, "right_easting");
    if (!degrees) {
        Say("            Left Easting: %f ", west);
        Say("            Right Easting: %f ", east);
        return east;
    }
    Say("        Left Easting: %f ", west);
    if (west <= east) {
        Say("        Right Easting: %f ", east);
        return east;
    }
    Say("        Right Easting: %f; unwrapped to: %f ", east, east + kWholeTurn_deg);
    return east + kWholeTurn_deg;
}

DEM_EDGES ReadEdges(PARAMETER_POOL& pool, bool degrees) {
    DEM_EDGES edges;
    edges.north = Read<double>(pool, "upper_northing");
    edges.south = Read<double>(pool, "lower_northing");
    Say("        Upper Northing: %f ", edges.north);
    Say("        Lower Northing: %f ", edges.south);
    edges.west = Read<double>(pool, "left_easting");
    edges.east = ReadEasternEdge(pool, edges.west, degrees);
    return edges;
}

void CheckEdges(const DEM_EDGES& edges, const PARAMETER_POOL& pool) {
    if (edges.north <= edges.south)
        RefuseValue(SourceOf<double>(pool, "upper_northing"), edges.north, "is not above lower_northing");
    if (edges.east <= edges.west)
        RefuseValue(SourceOf<double>(pool, "right_easting"), edges.east, "is not above left_easting");
}

/// No projection reaches farther than half way round the Earth; beyond, a slip of the pen would pass for terrain.
void CheckMetres(const DEM_EDGES& edges, const PARAMETER_POOL& pool) {
    constexpr double kFarthest_m = 2.0e7;
    const std::pair<const char*, double> values[] = {{"upper_northing", edges.north},
                                                     {"lower_northing", edges.south},
                                                     {"left_easting", edges.west},
                                                     {"right_easting", edges.east}};
    for (const auto& [key, value] : values)
        if (std::fabs(value) > kFarthest_m)
            RefuseValue({pool.FileName(), key}, value, "is outside -20000000..20000000 m");
}

UTM_PROJECTION ReadProjection(const GEODETIC_PARAMETERS& geodetic, PARAMETER_POOL& pool) {
    constexpr POOL_KEY<STRING> kHemisphere = "utm_hemisphere";
    const int zone = Read<int>(pool, "utm_zone");
    const std::string hemisphere = ReadIfPresent<STRING>(pool, kHemisphere).value_or(STRING("N")).ToStd();
    if (hemisphere != "N" && hemisphere != "S") {
        LogRefusedText(SourceOf(pool, kHemisphere), hemisphere, kHemisphere.row.range);
        throw ERROR_PARAMETER();
    }
    return UTM_PROJECTION(geodetic.a_m, geodetic.e2, zone, hemisphere == "S");
}

PIXEL_TYPE ReadPixelType(PARAMETER_POOL& pool) {
    constexpr POOL_KEY<STRING> kKey = "dem_pixel_type";
    const std::string type = ReadIfPresent<STRING>(pool, kKey).value_or(STRING("int_16")).ToStd();
    if (type == "int_16") return PIXEL_TYPE::INT_16;
    if (type == "flt_6") return PIXEL_TYPE::FLT_6;
    LogRefusedText(SourceOf(pool, kKey), type, kKey.row.range);
    throw ERROR_PARAMETER();
}

/// Row 0 of the raster is the northern edge; heights in metres.
MEM_MGR MapDem(const std::string& file, PIXEL_TYPE type) {
    MEM_MGR image;
    image.MapFileChecked(file, ACCESS_MODE::READ_ONLY, type);
    constexpr long long kMostSamples = std::numeric_limits<int>::max();
    if (image.Columns() > kMostSamples || image.Rows() > kMostSamples)
        LogAndThrow<ERROR_IMAGE>("%s: a DEM of %lld columns and %lld rows is too large", file.c_str(), image.Columns(),
                                 image.Rows());
    return image;
}

void Place(DEM_GRID& grid, MEM_MGR& image, const DEM_EDGES& edges) {
    grid.columns = static_cast<int>(image.Columns());
    grid.rows = static_cast<int>(image.Rows());
    if (image.PixelType() == PIXEL_TYPE::FLT_6) {
        grid.real_heights = ViewOf<float>(image);
    } else {
        grid.heights = ViewOf<short>(image);
    }
    grid.x0 = edges.west;
    grid.y0 = edges.north;
    grid.dx = (edges.east - edges.west) / grid.columns;
    grid.dy = (edges.north - edges.south) / grid.rows;
}

}  // namespace

PARAMETER_POOL OpenDemPool(const REQUEST& request) {
    Say(" - Read map pool: ............ %s", request.terrain.dem_pool.Text());
    return PARAMETER_POOL(request.terrain.dem_pool.text);
}

TERRAIN ReadTerrain(const REQUEST& request, PARAMETER_POOL& dem_pool) {
    TERRAIN terrain;
    DEM_GRID& grid = terrain.grid;
    Say(" - Open dem parameter pool: .. %s", request.terrain.dem_pool.Text());
    grid.height_offset_m = Read<double>(dem_pool, "dem_correction");
    Say("        Dem Correction: %f ", grid.height_offset_m);
    grid.kind = ReadGridFormat(dem_pool);
    // Only capitals ask for the turn across 180 degrees: "geo" always took its edges as they are.
    const DEM_EDGES edges = ReadEdges(dem_pool, grid.kind == "GEO");
    CheckEdges(edges, dem_pool);
    if (GridKindOf(grid.kind) == GRID_KIND::UTM) CheckMetres(edges, dem_pool);
    grid.geodetic = ReadGeodeticParameters(dem_pool);
    if (GridKindOf(grid.kind) == GRID_KIND::UTM) grid.utm = ReadProjection(grid.geodetic, dem_pool);
    Say("   a. Map (readonly) dem: .... %s ", request.terrain.dem_file.Text());
    terrain.image = MapDem(request.terrain.dem_file.text, ReadPixelType(dem_pool));
    Place(grid, terrain.image, edges);
    Say("   b. Dem resolution in x: ... %f", grid.dx);
    Say("   c. Dem resolution in y: ... %f", grid.dy);
    Say(" ");
    WarnAboutMistypedKeys(dem_pool, kDemPool);
    return terrain;
}
