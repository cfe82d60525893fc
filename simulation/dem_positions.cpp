#include "simulation/dem_positions.h"

#include "simulation/dem_sample.h"

namespace {

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

template <class SAMPLE>
[[gnu::always_inline]] inline void FillParallelFrom(const SAMPLE* samples, const PARALLEL& parallel,
                                                    const double* cos_longitude, const double* sin_longitude,
                                                    double offset_m, const POSITION_RUN& run) {
    const PARALLEL p = parallel;
    double* __restrict x_m = run.x_m;
    double* __restrict y_m = run.y_m;
    double* __restrict z_m = run.z_m;
    double* __restrict height_m = run.height_m;
    for (int i = 0; i < run.count; ++i) {
        const double h_m = HeightOf(samples[i]) + offset_m;
        const double axis_distance_m = (p.normal_radius_m + h_m) * p.cos_latitude;
        x_m[i] = axis_distance_m * cos_longitude[i];
        y_m[i] = axis_distance_m * sin_longitude[i];
        z_m[i] = (p.polar_radius_m + h_m) * p.sin_latitude;
        height_m[i] = static_cast<float>(h_m);
    }
}

}  // namespace

void VELMORA_VECTOR_LEVEL::FillParallel(const PARALLEL& parallel, const double* cos_longitude,
                                        const double* sin_longitude, const short* samples, double offset_m,
                                        const POSITION_RUN& run) {
    FillParallelFrom(samples, parallel, cos_longitude, sin_longitude, offset_m, run);
}

void VELMORA_VECTOR_LEVEL::FillParallelOfReals(const PARALLEL& parallel, const double* cos_longitude,
                                               const double* sin_longitude, const float* samples, double offset_m,
                                               const POSITION_RUN& run) {
    FillParallelFrom(samples, parallel, cos_longitude, sin_longitude, offset_m, run);
}

void VELMORA_VECTOR_LEVEL::FillMapRow(const MAP_ROW& map_row, const POSITION_RUN& run) {
    const MAP_ROW map = map_row;
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
        const double normal_radius_m = map.a_m / __builtin_sqrt(1.0 - map.e2 * sin_latitude * sin_latitude);
        const double h_m = height_m[i];
        const double axis_distance_m = (normal_radius_m + h_m) * cos_latitude;
        x_m[i] = axis_distance_m * cos_longitude;
        y_m[i] = axis_distance_m * sin_longitude;
        z_m[i] = ((1.0 - map.e2) * normal_radius_m + h_m) * sin_latitude;
        height_m[i] = static_cast<float>(h_m);
    }
}

void VELMORA_VECTOR_LEVEL::ShiftRun(const VECTOR_3D<double>& shift, const POSITION_RUN& run) {
    const VECTOR_3D<double> shift_m = shift;
    double* __restrict x_m = run.x_m;
    double* __restrict y_m = run.y_m;
    double* __restrict z_m = run.z_m;
    for (int i = 0; i < run.count; ++i) {
        x_m[i] += shift_m.x;
        y_m[i] += shift_m.y;
        z_m[i] += shift_m.z;
    }
}
