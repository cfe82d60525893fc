#include "simulation/dem_row.h"

#include <strings.h>

#include <algorithm>
#include <cmath>

#include "geometry/constants.h"
#include "lib/baselib/containers/vector_clones.h"

namespace {

/// Largest angle whose sine and cosine the short series below give to a rounding.
constexpr double kSmallAngle_rad = 0.25;

/// Pointers to the elements of one row.
struct RUN {
    double* __restrict x_m;
    double* __restrict y_m;
    double* __restrict z_m;
    double* __restrict height_m;
    int count;
};

RUN RunOf(RADAR_ROW& row) {
    return {row[QUANTITY::EARTH_X].data(), row[QUANTITY::EARTH_Y].data(), row[QUANTITY::EARTH_Z].data(),
            row[QUANTITY::HEIGHT_M].data(), row.size};
}

/// The closed form of GeographicToCartesian for points of one latitude.
struct PARALLEL {
    double sin_latitude;
    double cos_latitude;
    double normal_radius_m;
    double polar_radius_m;  ///< (1 - e2) N
};

VELMORA_VECTOR_CLONES
void FillParallel(const PARALLEL& p, const double* __restrict cos_longitude, const double* __restrict sin_longitude,
                  const short* __restrict samples, double offset_m, const RUN& run) {
    double* __restrict x_m = run.x_m;
    double* __restrict y_m = run.y_m;
    double* __restrict z_m = run.z_m;
    double* __restrict height_m = run.height_m;
    for (int i = 0; i < run.count; ++i) {
        const double h_m = samples[i] + offset_m;
        const double axis_distance_m = (p.normal_radius_m + h_m) * p.cos_latitude;
        x_m[i] = axis_distance_m * cos_longitude[i];
        y_m[i] = axis_distance_m * sin_longitude[i];
        z_m[i] = (p.polar_radius_m + h_m) * p.sin_latitude;
        height_m[i] = static_cast<float>(h_m);
    }
}

[[gnu::always_inline]] inline double SineOfSmall(double a) {
    const double q = a * a;
    double s = -1.0 / 1307674368000.0;  // -1 / 15!
    s = s * q + 1.0 / 6227020800.0;
    s = s * q - 1.0 / 39916800.0;
    s = s * q + 1.0 / 362880.0;
    s = s * q - 1.0 / 5040.0;
    s = s * q + 1.0 / 120.0;
    s = s * q - 1.0 / 6.0;
    return a + a * q * s;
}

[[gnu::always_inline]] inline double CosineOfSmall(double a) {
    const double q = a * a;
    double s = 1.0 / 20922789888000.0;  // 1 / 16!
    s = s * q - 1.0 / 87178291200.0;
    s = s * q + 1.0 / 479001600.0;
    s = s * q - 1.0 / 3628800.0;
    s = s * q + 1.0 / 40320.0;
    s = s * q - 1.0 / 720.0;
    s = s * q + 1.0 / 24.0;
    s = s * q - 0.5;
    return 1.0 + q * s;
}

/// Latitude and longitude of a map position as small differences from the footpoint and the central meridian.
struct SMALL_ANGLES {
    double latitude_rad;  ///< southwards
    double longitude_rad;
};

[[gnu::always_inline]] inline SMALL_ANGLES AnglesOf(const UTM_INVERSE_ROW& row, double east_m) {
    const double d = east_m * row.arc_per_metre;
    const double d2 = d * d;
    return {d2 * (row.c[0] + d2 * (row.c[1] + d2 * row.c[2])), d * (row.l[0] + d2 * (row.l[1] + d2 * row.l[2]))};
}

struct MAP_ROW {
    UTM_INVERSE_ROW series;
    double sin_footpoint;
    double cos_footpoint;
    double sin_meridian;
    double cos_meridian;
    double first_east_m;  ///< from the central meridian, of the first column
    double spacing_m;
    double a_m;
    double e2;
};

/// Heights of the row stand in run.height_m in double precision and are rounded here.
VELMORA_VECTOR_CLONES
void FillMapRow(const MAP_ROW& map, const RUN& run) {
    double* __restrict x_m = run.x_m;
    double* __restrict y_m = run.y_m;
    double* __restrict z_m = run.z_m;
    double* __restrict height_m = run.height_m;
    for (int i = 0; i < run.count; ++i) {
        const SMALL_ANGLES angles = AnglesOf(map.series, map.first_east_m + i * map.spacing_m);
        const double sin_south = SineOfSmall(angles.latitude_rad);
        const double cos_south = CosineOfSmall(angles.latitude_rad);
        const double sin_east = SineOfSmall(angles.longitude_rad);
        const double cos_east = CosineOfSmall(angles.longitude_rad);
        const double sin_latitude = map.sin_footpoint * cos_south - map.cos_footpoint * sin_south;
        const double cos_latitude = map.cos_footpoint * cos_south + map.sin_footpoint * sin_south;
        const double sin_longitude = map.sin_meridian * cos_east + map.cos_meridian * sin_east;
        const double cos_longitude = map.cos_meridian * cos_east - map.sin_meridian * sin_east;
        const double normal_radius_m = map.a_m / std::sqrt(1.0 - map.e2 * sin_latitude * sin_latitude);
        const double h_m = height_m[i];
        const double axis_distance_m = (normal_radius_m + h_m) * cos_latitude;
        x_m[i] = axis_distance_m * cos_longitude;
        y_m[i] = axis_distance_m * sin_longitude;
        z_m[i] = ((1.0 - map.e2) * normal_radius_m + h_m) * sin_latitude;
        height_m[i] = static_cast<float>(h_m);
    }
}

VELMORA_VECTOR_CLONES
void ShiftRun(const VECTOR_3D<double>& shift_m, const RUN& run) {
    double* __restrict x_m = run.x_m;
    double* __restrict y_m = run.y_m;
    double* __restrict z_m = run.z_m;
    for (int i = 0; i < run.count; ++i) {
        x_m[i] += shift_m.x;
        y_m[i] += shift_m.y;
        z_m[i] += shift_m.z;
    }
}

}  // namespace

DEM_ROW::DEM_ROW(const DEM_GRID& dem, const DEM_RANGE& simulated)
    : dem_(dem),
      kind_(strcasecmp(dem.kind.c_str(), "GEO") == 0   ? KIND::GEO
            : strcasecmp(dem.kind.c_str(), "UTM") == 0 ? KIND::UTM
                                                       : KIND::REFUSED) {
    if (kind_ != KIND::GEO) return;
    for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
        const double longitude_rad = (column * dem.dx + dem.x0) * kRadiansPerDegree;
        cos_longitude_.push_back(std::cos(longitude_rad));
        sin_longitude_.push_back(std::sin(longitude_rad));
    }
}

void DEM_ROW::FillPositions(RADAR_ROW& row) const {
    if (row.positions_filled) return;
    row.positions_filled = true;
    if (kind_ == KIND::GEO) {
        FillGeo(row);
    } else if (kind_ != KIND::UTM || !FillUtm(row)) {
        FillOneByOne(row);
    }
}

void DEM_ROW::FillGeo(RADAR_ROW& row) const {
    const double latitude_rad = (dem_.y0 - row.row * dem_.dy) * kRadiansPerDegree;
    PARALLEL parallel{};
    parallel.sin_latitude = std::sin(latitude_rad);
    parallel.cos_latitude = std::cos(latitude_rad);
    const double e2 = dem_.geodetic.e2;
    parallel.normal_radius_m = dem_.geodetic.a_m / std::sqrt(1.0 - e2 * parallel.sin_latitude * parallel.sin_latitude);
    parallel.polar_radius_m = (1.0 - e2) * parallel.normal_radius_m;
    FillParallel(parallel, cos_longitude_.data(), sin_longitude_.data(), dem_.heights[row.row] + row.first_column,
                 dem_.height_offset_m, RunOf(row));
    CarryIntoOrbitFrame(row);
}

bool DEM_ROW::FillUtm(RADAR_ROW& row) const {
    const UTM_PROJECTION& utm = dem_.utm.value();
    MAP_ROW map{};
    map.series = utm.InverseRow(dem_.y0 - row.row * dem_.dy);
    map.first_east_m = row.first_column * dem_.dx + dem_.x0 - utm.FalseEasting();
    map.spacing_m = dem_.dx;
    // Both differences grow with the distance from the central meridian: the ends of the row tell of all of it. Near a
    // pole, and far from the meridian, the plain way knows how to fold angles.
    constexpr double kNoPole_rad = 1.5;
    if (!(std::abs(map.series.footpoint_rad) < kNoPole_rad)) return false;
    for (const double east_m : {map.first_east_m, map.first_east_m + (row.size - 1) * map.spacing_m}) {
        const SMALL_ANGLES angles = AnglesOf(map.series, east_m);
        if (!(std::abs(east_m * map.series.arc_per_metre) < kSmallAngle_rad)) return false;
        if (!(std::abs(angles.latitude_rad) < kSmallAngle_rad)) return false;
        if (!(std::abs(angles.longitude_rad) < kSmallAngle_rad)) return false;
    }
    map.sin_footpoint = std::sin(map.series.footpoint_rad);
    map.cos_footpoint = std::cos(map.series.footpoint_rad);
    map.sin_meridian = std::sin(utm.CentralMeridian());
    map.cos_meridian = std::cos(utm.CentralMeridian());
    map.a_m = dem_.geodetic.a_m;
    map.e2 = dem_.geodetic.e2;

    // A map grid may reach beyond the samples; their edge goes on.
    const short* const samples = dem_.heights[std::clamp(row.row, 0, dem_.rows - 1)];
    const RUN run = RunOf(row);
    for (int i = 0; i < row.size; ++i) {
        run.height_m[i] = samples[std::clamp(row.first_column + i, 0, dem_.columns - 1)] + dem_.height_offset_m;
    }
    FillMapRow(map, run);
    CarryIntoOrbitFrame(row);
    return true;
}

void DEM_ROW::FillOneByOne(RADAR_ROW& row) const {
    for (int i = 0; i < row.size; ++i) {
        float height_m = 0.0F;
        Get_Earth_Position_From_DEM(dem_, row.first_column + i, row.row, row[QUANTITY::EARTH_X][i],
                                    row[QUANTITY::EARTH_Y][i], row[QUANTITY::EARTH_Z][i], &height_m);
        row[QUANTITY::HEIGHT_M][i] = height_m;
    }
}

void DEM_ROW::CarryIntoOrbitFrame(RADAR_ROW& row) const {
    const DATUM& datum = dem_.geodetic.datum;
    const RUN run = RunOf(row);
    if (datum.shift_only) {
        ShiftRun(datum.shift_m, run);
        return;
    }
    for (int i = 0; i < row.size; ++i) {
        const VECTOR_3D<double> moved = DatumForward(datum, {run.x_m[i], run.y_m[i], run.z_m[i]});
        run.x_m[i] = moved.x;
        run.y_m[i] = moved.y;
        run.z_m[i] = moved.z;
    }
}
