#include "view/earth_positions.h"

#include <cmath>
#include <numbers>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "geometry/geodetic.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "view/raster_file.h"

namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;
constexpr double kWgs84A_m = 6378137.0;
constexpr double kWgs84E2 = 6.69437999014e-3;
constexpr double kSmallestRadius_m = 6.0e6;

struct AXIS {
    RASTER_FILE file;
    double offset_m;
    std::vector<double> row;

    AXIS(const std::string& path, PARAMETER_POOL& pool, const char* key)
        : file(path), offset_m(pool.Get<double>(key)), row(static_cast<std::size_t>(file.Columns())) {}
};

void RefuseOtherSize(const RASTER_FILE& first, const RASTER_FILE& other) {
    if (first.Columns() == other.Columns() && first.Rows() == other.Rows()) return;
    throw COMPANION_ERROR(other.Path() + ": has " + std::to_string(other.Columns()) + " x " +
                          std::to_string(other.Rows()) + " pixels: expected those of " + first.Path() + ", " +
                          std::to_string(first.Columns()) + " x " + std::to_string(first.Rows()));
}

/// No place on the ground can be found from the pixels of a line.
void RefuseLine(const RASTER_FILE& file) {
    if (file.Columns() > 1 && file.Rows() > 1) return;
    throw COMPANION_ERROR(file.Path() + ": has " + std::to_string(file.Columns()) + " x " +
                          std::to_string(file.Rows()) + " pixels: a map needs at least 2 x 2");
}

double NearTo(double longitude_deg, double centre_deg) {
    return longitude_deg - 360.0 * std::round((longitude_deg - centre_deg) / 360.0);
}

void RunOnAcrossTheDateLine(EARTH_POSITIONS& positions) {
    const std::size_t middle = static_cast<std::size_t>(positions.rows / 2) * positions.columns + positions.columns / 2;
    const double centre_deg = positions.longitudes_deg[middle];
    for (double& longitude_deg : positions.longitudes_deg) longitude_deg = NearTo(longitude_deg, centre_deg);
}

void Append(const VECTOR_3D<double>& point_m, const std::string& path, EARTH_POSITIONS& positions) {
    const double radius2 = point_m.x * point_m.x + point_m.y * point_m.y + point_m.z * point_m.z;
    if (!(radius2 > kSmallestRadius_m * kSmallestRadius_m))
        throw COMPANION_ERROR(path + ": pixel " + std::to_string(positions.longitudes_deg.size()) +
                              ": with the pool's offsets it does not lie on the Earth: are pool and files of one run?");
    const GEOGRAPHIC position = CartesianToGeographic(point_m, kWgs84A_m, kWgs84E2);
    positions.longitudes_deg.push_back(position.longitude_rad * kDegrees);
    positions.latitudes_deg.push_back(position.latitude_rad * kDegrees);
}

}  // namespace

EARTH_POSITIONS ReadEarthPositions(const EARTH_FILES& files) {
    RequireRegularFile(files.pool);
    PARAMETER_POOL pool(files.pool);
    AXIS x(files.x, pool, "x_earth_offset");
    AXIS y(files.y, pool, "y_earth_offset");
    AXIS z(files.z, pool, "z_earth_offset");
    RefuseOtherSize(x.file, y.file);
    RefuseOtherSize(x.file, z.file);
    RefuseLine(x.file);
    EARTH_POSITIONS positions{static_cast<int>(x.file.Columns()), static_cast<int>(x.file.Rows()), {}, {}};
    for (int row = 0; row < positions.rows; ++row) {
        for (AXIS* axis : {&x, &y, &z}) axis->file.ReadRow(row, axis->row);
        for (std::size_t i = 0; i < x.row.size(); ++i)
            Append({x.row[i] + x.offset_m, y.row[i] + y.offset_m, z.row[i] + z.offset_m}, files.x, positions);
    }
    RunOnAcrossTheDateLine(positions);
    return positions;
}
