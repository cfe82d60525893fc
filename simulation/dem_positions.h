/// \file dem_positions.h
/// The loops over the samples of a DEM row that place them on the Earth, compiled once per vector level.

#pragma once

#include "geometry/utm_projection.h"
#include "lib/baselib/containers/records.h"
#include "lib/baselib/vectors/vector_level.h"

/// The elements of one row. The arrays do not overlap.
struct POSITION_RUN {
    double* x_m;
    double* y_m;
    double* z_m;
    double* height_m;
    int count;
};

/// The closed form of GeographicToCartesian for points of one latitude.
struct PARALLEL {
    double sin_latitude;
    double cos_latitude;
    double normal_radius_m;
    double polar_radius_m;  ///< (1 - e2) N
};

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

VELMORA_AT_EVERY_LEVEL(void FillParallel(const PARALLEL& parallel, const double* cos_longitude,
                                         const double* sin_longitude, const short* samples, double offset_m,
                                         const POSITION_RUN& run))

VELMORA_AT_EVERY_LEVEL(void FillParallelOfReals(const PARALLEL& parallel, const double* cos_longitude,
                                                const double* sin_longitude, const float* samples, double offset_m,
                                                const POSITION_RUN& run))

/// Heights of the row stand in run.height_m in double precision and are rounded here.
VELMORA_AT_EVERY_LEVEL(void FillMapRow(const MAP_ROW& map, const POSITION_RUN& run))

VELMORA_AT_EVERY_LEVEL(void ShiftRun(const VECTOR_3D<double>& shift_m, const POSITION_RUN& run))
