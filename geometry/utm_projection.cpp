#include "geometry/utm_projection.h"

#include <cmath>

#include "geometry/constants.h"

namespace {

constexpr double kForwardLimitRadians = 7.0 * kRadiansPerDegree;  ///< a margin to the promised 6 degrees
constexpr double kForwardToleranceMetres = 1e-7;
constexpr int kForwardMaxSteps = 20;

/// Exact, and for one turn the same as adding or subtracting it; a loop of subtractions never ended for eastings of
/// 1e11 m.
double InOneTurn(double angle_rad) {
    return std::fabs(angle_rad) <= kPi ? angle_rad : std::remainder(angle_rad, kTwoPi);
}

}  // namespace

UTM_PROJECTION::UTM_PROJECTION(double a_m, double e2, int zone, bool southern_hemisphere)
    : a_m_(a_m),
      e2_(e2),
      ep2_(e2 / (1.0 - e2)),
      central_meridian_rad_((6.0 * zone - 183.0) * kRadiansPerDegree),
      false_northing_m_(southern_hemisphere ? kUtmFalseNorthingSouthMetres : 0.0),
      rectifying_radius_m_(a_m * (1.0 - e2 / 4.0 - 3.0 * e2 * e2 / 64.0 - 5.0 * e2 * e2 * e2 / 256.0)) {
    // Snyder, eqs. 3-24 and 3-26.
    const double e1 = (1.0 - std::sqrt(1.0 - e2)) / (1.0 + std::sqrt(1.0 - e2));
    footpoint_[0] = 3.0 * e1 / 2.0 - 27.0 * e1 * e1 * e1 / 32.0;
    footpoint_[1] = 21.0 * e1 * e1 / 16.0 - 55.0 * e1 * e1 * e1 * e1 / 32.0;
    footpoint_[2] = 151.0 * e1 * e1 * e1 / 96.0;
    footpoint_[3] = 1097.0 * e1 * e1 * e1 * e1 / 512.0;
}

MAP_GEOGRAPHIC UTM_PROJECTION::Inverse(const MAP_POSITION& position) const {
    const UTM_INVERSE_ROW row = InverseRow(position.northing_m);
    const double d = (position.easting_m - false_easting_m_) * row.arc_per_metre;
    const double d2 = d * d;
    double phi = row.footpoint_rad - d2 * (row.c[0] + d2 * (row.c[1] + d2 * row.c[2]));
    const double lambda = central_meridian_rad_ + d * (row.l[0] + d2 * (row.l[1] + d2 * row.l[2]));

    if (phi > kPi / 2.0) phi = kPi - phi;
    if (phi < -kPi / 2.0) phi = -phi - kPi;
    return {InOneTurn(lambda), phi};
}

// The published series in one piece, eqs. 8-17 to 8-25: cutting it up would hide it.
UTM_INVERSE_ROW UTM_PROJECTION::InverseRow(double northing_m) const {
    const double m = (northing_m - false_northing_m_) / scale_ + origin_meridian_distance_m_;
    const double mu = m / rectifying_radius_m_;
    const double phi1 = mu + footpoint_[0] * std::sin(2.0 * mu) + footpoint_[1] * std::sin(4.0 * mu) +
                        footpoint_[2] * std::sin(6.0 * mu) + footpoint_[3] * std::sin(8.0 * mu);
    const double sin1 = std::sin(phi1);
    const double cos1 = std::cos(phi1);
    const double tan1 = std::tan(phi1);
    const double c1 = ep2_ * cos1 * cos1;
    const double t1 = tan1 * tan1;
    const double w2 = 1.0 - e2_ * sin1 * sin1;
    const double n1 = a_m_ / std::sqrt(w2);
    const double r1 = a_m_ * (1.0 - e2_) / (w2 * std::sqrt(w2));
    const double k = n1 * tan1 / r1;
    return {phi1,
            1.0 / (n1 * scale_),
            {k / 2.0, -k * (5.0 + 3.0 * t1 + 10.0 * c1 - 4.0 * c1 * c1 - 9.0 * ep2_) / 24.0,
             k * (61.0 + 90.0 * t1 + 298.0 * c1 + 45.0 * t1 * t1 - 252.0 * ep2_ - 3.0 * c1 * c1) / 720.0},
            {1.0 / cos1, -(1.0 + 2.0 * t1 + c1) / (6.0 * cos1),
             (5.0 - 2.0 * c1 + 28.0 * t1 - 3.0 * c1 * c1 + 8.0 * ep2_ + 24.0 * t1 * t1) / (120.0 * cos1)}};
}

double UTM_PROJECTION::MeridianDistance(double latitude_rad) const {
    const double e4 = e2_ * e2_;
    const double e6 = e4 * e2_;
    return rectifying_radius_m_ * latitude_rad +
           a_m_ * (-(3.0 * e2_ / 8.0 + 3.0 * e4 / 32.0 + 45.0 * e6 / 1024.0) * std::sin(2.0 * latitude_rad) +
                   (15.0 * e4 / 256.0 + 45.0 * e6 / 1024.0) * std::sin(4.0 * latitude_rad) -
                   (35.0 * e6 / 3072.0) * std::sin(6.0 * latitude_rad));
}

// Eqs. 8-9 to 8-15 and 3-21, in one piece as well.
MAP_POSITION UTM_PROJECTION::ForwardSeries(const MAP_GEOGRAPHIC& position) const {
    const double sin_phi = std::sin(position.latitude_rad);
    const double cos_phi = std::cos(position.latitude_rad);
    const double tan_phi = std::tan(position.latitude_rad);
    const double n = a_m_ / std::sqrt(1.0 - e2_ * sin_phi * sin_phi);
    const double t = tan_phi * tan_phi;
    const double c = ep2_ * cos_phi * cos_phi;
    const double a = cos_phi * InOneTurn(position.longitude_rad - central_meridian_rad_);
    const double a2 = a * a;
    const double m = MeridianDistance(position.latitude_rad) - origin_meridian_distance_m_;

    return {false_easting_m_ + scale_ * n *
                                   (a + (1.0 - t + c) * a2 * a / 6.0 +
                                    (5.0 - 18.0 * t + t * t + 72.0 * c - 58.0 * ep2_) * a2 * a2 * a / 120.0),
            false_northing_m_ +
                scale_ * (m + n * tan_phi *
                                  (a2 / 2.0 + (5.0 - t + 9.0 * c + 4.0 * c * c) * a2 * a2 / 24.0 +
                                   (61.0 - 58.0 * t + t * t + 600.0 * c - 330.0 * ep2_) * a2 * a2 * a2 / 720.0))};
}

MAP_POSITION UTM_PROJECTION::Forward(const MAP_GEOGRAPHIC& position) const {
    MAP_POSITION map = ForwardSeries(position);
    const double delta_lambda = InOneTurn(position.longitude_rad - central_meridian_rad_);
    if (std::abs(delta_lambda) > kForwardLimitRadians) return map;

    // Newton's method on Inverse with the slope of the conformal map itself: a rotation by the grid convergence and the
    // scale of the central meridian. The true scale differs from it by 1e-3 or so, hence each step wins three digits.
    const double sin_phi = std::sin(position.latitude_rad);
    const double cos_phi = std::cos(position.latitude_rad);
    const double w2 = 1.0 - e2_ * sin_phi * sin_phi;
    const double parallel_radius_m = a_m_ / std::sqrt(w2) * cos_phi;
    const double meridian_radius_m = a_m_ * (1.0 - e2_) / (w2 * std::sqrt(w2));
    const double convergence_rad = std::atan(std::tan(delta_lambda) * sin_phi);
    for (int step = 0; step < kForwardMaxSteps; ++step) {
        const MAP_GEOGRAPHIC reached = Inverse(map);
        const double east_m = scale_ * parallel_radius_m * InOneTurn(position.longitude_rad - reached.longitude_rad);
        const double north_m = scale_ * meridian_radius_m * (position.latitude_rad - reached.latitude_rad);
        map.easting_m += east_m * std::cos(convergence_rad) - north_m * std::sin(convergence_rad);
        map.northing_m += east_m * std::sin(convergence_rad) + north_m * std::cos(convergence_rad);
        if (std::hypot(east_m, north_m) < kForwardToleranceMetres) break;
    }
    return map;
}
