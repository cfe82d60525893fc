#include "simulation/dem_grid.h"

#include <strings.h>

#include <algorithm>
#include <cmath>

#include "geometry/constants.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

[[noreturn]] void RefuseKind(const DEM_GRID& dem) {
    LogAndThrow<ERROR_DATA>("DEM grid must be UTM or GEO : %s", dem.kind.c_str());
}

GEOGRAPHIC GeographicOfUtmSample(const DEM_GRID& dem, int column, int row) {
    const MAP_GEOGRAPHIC position = dem.utm.value().Inverse({column * dem.dx + dem.x0, dem.y0 - row * dem.dy});
    const int inner_row = std::clamp(row, 0, dem.rows - 1);
    const int inner_column = std::clamp(column, 0, dem.columns - 1);
    return {position.longitude_rad, position.latitude_rad, dem.Height(inner_column, inner_row) + dem.height_offset_m};
}

GEOGRAPHIC GeographicOfGeoSample(const DEM_GRID& dem, int column, int row) {
    return {(column * dem.dx + dem.x0) * kRadiansPerDegree, (dem.y0 - row * dem.dy) * kRadiansPerDegree,
            dem.Height(column, row) + dem.height_offset_m};
}

}  // namespace

GRID_KIND GridKindOf(const std::string& format) {
    if (strcasecmp(format.c_str(), "GEO") == 0) return GRID_KIND::GEO;
    return strcasecmp(format.c_str(), "UTM") == 0 ? GRID_KIND::UTM : GRID_KIND::REFUSED;
}

GEOGRAPHIC GeographicOfDemSample(const DEM_GRID& dem, int column, int row) {
    const GRID_KIND kind = GridKindOf(dem.kind);
    if (kind == GRID_KIND::REFUSED) RefuseKind(dem);
    return kind == GRID_KIND::GEO ? GeographicOfGeoSample(dem, column, row) : GeographicOfUtmSample(dem, column, row);
}

void Get_Earth_Position_From_DEM(const DEM_GRID& dem, int column, int row, double& x_m, double& y_m, double& z_m,
                                 float* height_m) {
    const GEOGRAPHIC position = GeographicOfDemSample(dem, column, row);
    const VECTOR_3D<double> point_m =
        DatumForward(dem.geodetic.datum, GeographicToCartesian(position, dem.geodetic.a_m, dem.geodetic.e2));
    x_m = point_m.x;
    y_m = point_m.y;
    z_m = point_m.z;
    if (height_m != nullptr) *height_m = static_cast<float>(position.height_m);
}

void Get_Local_DEM_From_GEO(const DEM_GRID& dem, double& column, double& row, double longitude_deg,
                            double latitude_deg) {
    const GRID_KIND kind = GridKindOf(dem.kind);
    if (kind == GRID_KIND::UTM) {
        LogAndThrow<ERROR_NOT_IMPLEMENTED>("Get_Local_DEM_From_GEO not yet implemented for UTM");
    }
    if (kind == GRID_KIND::REFUSED) RefuseKind(dem);
    double d = longitude_deg - dem.x0;
    if (d > 360.0) d -= 360.0;
    if (d < -360.0) d += 360.0;
    column = d / dem.dx;
    row = (dem.y0 - latitude_deg) / dem.dy;
}

POINT<double> LocateInDem(const DEM_GRID& dem, const VECTOR_3D<double>& point_m) {
    const GEOGRAPHIC position =
        CartesianToGeographic(DatumInverse(dem.geodetic.datum, point_m), dem.geodetic.a_m, dem.geodetic.e2);
    if (GridKindOf(dem.kind) == GRID_KIND::UTM) {
        const MAP_POSITION map = dem.utm.value().Forward({position.longitude_rad, position.latitude_rad});
        return {(map.easting_m - dem.x0) / dem.dx, (dem.y0 - map.northing_m) / dem.dy};
    }
    POINT<double> place;
    Get_Local_DEM_From_GEO(dem, place.x, place.y, position.longitude_rad * kDegreesPerRadian,
                           position.latitude_rad * kDegreesPerRadian);
    const double turn_columns = 360.0 / dem.dx;
    const double middle_column = 0.5 * dem.columns;
    place.x += std::round((middle_column - place.x) / turn_columns) * turn_columns;
    return place;
}
