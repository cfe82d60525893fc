#include "simulation/dem_row.h"

#include <algorithm>
#include <cmath>

#include "geometry/constants.h"
#include "simulation/dem_positions.h"

namespace {

/// Largest angle whose sine and cosine the short series below give to a rounding.
constexpr double kSmallAngle_rad = 0.25;

POSITION_RUN RunOf(RADAR_ROW& row) {
    return {row[QUANTITY::EARTH_X].data(), row[QUANTITY::EARTH_Y].data(), row[QUANTITY::EARTH_Z].data(),
            row[QUANTITY::HEIGHT_M].data(), row.size};
}

/// A map grid may reach beyond the samples; their edge goes on.
template <class SAMPLE>
void TakeHeights(const GRID_VIEW<const SAMPLE>& heights, const DEM_GRID& dem, const RADAR_ROW& row,
                 const POSITION_RUN& run) {
    const SAMPLE* const samples = heights[std::clamp(row.row, 0, dem.rows - 1)];
    for (int i = 0; i < row.size; ++i) {
        const SAMPLE sample_m = samples[std::clamp(row.first_column + i, 0, dem.columns - 1)];
        run.height_m[i] = HeightOf(sample_m) + dem.height_offset_m;
    }
}

}  // namespace

DEM_ROW::DEM_ROW(const DEM_GRID& dem, const DEM_RANGE& simulated, VECTOR_LEVEL level)
    : dem_(dem), level_(level), kind_(GridKindOf(dem.kind)) {
    if (kind_ != GRID_KIND::GEO) return;
    for (int column = simulated.first_column; column <= simulated.last_column; ++column) {
        const double longitude_rad = (column * dem.dx + dem.x0) * kRadiansPerDegree;
        cos_longitude_.push_back(std::cos(longitude_rad));
        sin_longitude_.push_back(std::sin(longitude_rad));
    }
}

void DEM_ROW::FillPositions(RADAR_ROW& row) const {
    if (row.positions_filled) return;
    row.positions_filled = true;
    if (kind_ == GRID_KIND::GEO) {
        FillGeo(row);
    } else if (kind_ != GRID_KIND::UTM || !FillUtm(row)) {
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
    if (dem_.real_heights) {
        VELMORA_AT_LEVEL(level_, FillParallelOfReals)
        (parallel, cos_longitude_.data(), sin_longitude_.data(), dem_.real_heights[row.row] + row.first_column,
         dem_.height_offset_m, RunOf(row));
    } else {
        VELMORA_AT_LEVEL(level_, FillParallel)
        (parallel, cos_longitude_.data(), sin_longitude_.data(), dem_.heights[row.row] + row.first_column,
         dem_.height_offset_m, RunOf(row));
    }
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

    const POSITION_RUN run = RunOf(row);
    if (dem_.real_heights) {
        TakeHeights(dem_.real_heights, dem_, row, run);
    } else {
        TakeHeights(dem_.heights, dem_, row, run);
    }
    VELMORA_AT_LEVEL(level_, FillMapRow)(map, run);
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
    const POSITION_RUN run = RunOf(row);
    if (datum.shift_only) {
        VELMORA_AT_LEVEL(level_, ShiftRun)(datum.shift_m, run);
        return;
    }
    for (int i = 0; i < row.size; ++i) {
        const VECTOR_3D<double> moved = DatumForward(datum, {run.x_m[i], run.y_m[i], run.z_m[i]});
        run.x_m[i] = moved.x;
        run.y_m[i] = moved.y;
        run.z_m[i] = moved.z;
    }
}
