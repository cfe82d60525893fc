#include "geometry/geodetic.h"

#include <cmath>

double SquaredEccentricity(double a_m, double b_m) {
    return (a_m * a_m - b_m * b_m) / (a_m * a_m);
}

VECTOR_3D<double> GeographicToCartesian(const GEOGRAPHIC& position, double a_m, double e2) {
    const double sin_latitude = std::sin(position.latitude_rad);
    const double cos_latitude = std::cos(position.latitude_rad);
    const double normal_radius_m = a_m / std::sqrt(1.0 - e2 * sin_latitude * sin_latitude);
    const double axis_distance_m = (normal_radius_m + position.height_m) * cos_latitude;
    return {axis_distance_m * std::cos(position.longitude_rad), axis_distance_m * std::sin(position.longitude_rad),
            ((1.0 - e2) * normal_radius_m + position.height_m) * sin_latitude};
}

GEOGRAPHIC CartesianToGeographic(const VECTOR_3D<double>& point_m, double a_m, double e2) {
    const double axis_distance_m = std::hypot(point_m.x, point_m.y);
    if (axis_distance_m == 0.0 && point_m.z == 0.0) return {0.0, 0.0, -a_m};

    GEOGRAPHIC result;
    result.longitude_rad = std::atan2(point_m.y, point_m.x);
    const double flattening_ratio = std::sqrt(1.0 - e2);  // b / a
    const double b_m = a_m * flattening_ratio;
    const double ep2 = e2 / (1.0 - e2);
    // Bowring's formula is exact to nanometres at satellite heights after one step; two more cost nothing here.
    double reduced_latitude_rad = std::atan2(point_m.z, flattening_ratio * axis_distance_m);
    for (int step = 0; step < 3; ++step) {
        const double sin_reduced = std::sin(reduced_latitude_rad);
        const double cos_reduced = std::cos(reduced_latitude_rad);
        result.latitude_rad = std::atan2(point_m.z + ep2 * b_m * sin_reduced * sin_reduced * sin_reduced,
                                         axis_distance_m - e2 * a_m * cos_reduced * cos_reduced * cos_reduced);
        reduced_latitude_rad =
            std::atan2(flattening_ratio * std::sin(result.latitude_rad), std::cos(result.latitude_rad));
    }
    const double sin_latitude = std::sin(result.latitude_rad);
    const double cos_latitude = std::cos(result.latitude_rad);
    // Projected onto the normal: well conditioned at the poles and on the equator alike.
    result.height_m = axis_distance_m * cos_latitude + point_m.z * sin_latitude -
                      a_m * std::sqrt(1.0 - e2 * sin_latitude * sin_latitude);
    return result;
}

VECTOR_3D<double> DatumForward(const DATUM& datum, const VECTOR_3D<double>& point_m) {
    const VECTOR_3D<double>& d = datum.shift_m;
    if (datum.shift_only) return {point_m.x + d.x, point_m.y + d.y, point_m.z + d.z};
    const auto row = [&](const double(&r)[3]) {
        return datum.scale * (r[0] * point_m.x + r[1] * point_m.y + r[2] * point_m.z);
    };
    return {row(datum.rotation[0]) + d.x, row(datum.rotation[1]) + d.y, row(datum.rotation[2]) + d.z};
}

VECTOR_3D<double> DatumInverse(const DATUM& datum, const VECTOR_3D<double>& point_m) {
    const VECTOR_3D<double> shifted = {point_m.x - datum.shift_m.x, point_m.y - datum.shift_m.y,
                                       point_m.z - datum.shift_m.z};
    if (datum.shift_only) return shifted;
    // The adjugate, not the transpose: published rotations are often small-angle matrices, and their squares of 1e-5
    // would cost a millimetre on the Earth's radius.
    const auto& r = datum.rotation;
    const auto cofactor = [&](int i, int j) {
        const int i1 = (i + 1) % 3;
        const int i2 = (i + 2) % 3;
        const int j1 = (j + 1) % 3;
        const int j2 = (j + 2) % 3;
        return r[i1][j1] * r[i2][j2] - r[i1][j2] * r[i2][j1];
    };
    const double determinant = r[0][0] * cofactor(0, 0) + r[0][1] * cofactor(0, 1) + r[0][2] * cofactor(0, 2);
    const auto column = [&](int j) {
        return (cofactor(0, j) * shifted.x + cofactor(1, j) * shifted.y + cofactor(2, j) * shifted.z) /
               (determinant * datum.scale);
    };
    return {column(0), column(1), column(2)};
}

bool IsRotation(const double (&rotation)[3][3], double tolerance) {
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            double product = 0.0;
            for (int j = 0; j < 3; ++j) product += rotation[i][j] * rotation[k][j];
            if (!(std::abs(product - (i == k ? 1.0 : 0.0)) <= tolerance)) return false;
        }
    }
    const auto& r = rotation;
    return r[0][0] * (r[1][1] * r[2][2] - r[1][2] * r[2][1]) - r[0][1] * (r[1][0] * r[2][2] - r[1][2] * r[2][0]) +
               r[0][2] * (r[1][0] * r[2][1] - r[1][1] * r[2][0]) >
           0.0;
}
