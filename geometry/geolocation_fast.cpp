#include "geometry/geolocation_fast.h"

#include <algorithm>
#include <cmath>

#include "geometry/constants.h"
#include "geometry/vector_arithmetic.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr double kTolerance = 1e-9;  ///< metres for radius and range, metres per second for Doppler
constexpr int kMaxSteps = 21;
constexpr double kLongestTimeSeconds = 1e6;

struct ARGUMENTS {
    VECTOR_3D<double> position_m;
    VECTOR_3D<double> velocity_m_s;
    double look_direction;
    double height_m;
    double rpole_m;
    double requator_m;
    double fast_time_s;
    double line_of_sight_velocity_m_s;
};

/// The local frame at the satellite and the last iterate.
struct WORKSPACE {
    double distance_m = 0.0;              ///< |S|
    double satellite_latitude_rad = 0.0;  ///< geocentric
    VECTOR_3D<double> e1;                 ///< towards the Earth's centre
    VECTOR_3D<double> e2;                 ///< along track
    VECTOR_3D<double> e3;                 ///< across track
    double range_m = 0.0;
    VECTOR_3D<double> line_of_sight_m{};  ///< P - S of the last step
    double radius_m = 0.0;
    double previous_radius_m = 0.0;
    double latitude_rad = 0.0;  ///< geocentric, of the last step
    double range_residual_m = 10.0;
    double doppler_residual_m_s = 10.0;
    int steps = 0;
};

/// The reference ellipsoid enlarged by the height of the sought point.
struct ENLARGED_ELLIPSOID {
    double b_m;
    double e2;

    explicit ENLARGED_ELLIPSOID(const ARGUMENTS& arguments) : b_m(arguments.rpole_m + arguments.height_m) {
        const double ratio = b_m / (arguments.requator_m + arguments.height_m);
        e2 = 1.0 - ratio * ratio;
    }

    [[nodiscard]] double RadiusAt(double geocentric_latitude_rad) const {
        const double cosine = std::cos(geocentric_latitude_rad);
        return b_m / std::sqrt(1.0 - e2 * cosine * cosine);
    }
};

/// Rounding may carry a sine or cosine beyond 1 by its last bit, and the traps are on.
double Bounded(double sine_or_cosine) {
    return std::clamp(sine_or_cosine, -1.0, 1.0);
}

/// A satellite above a pole has no longitude.
void RequireLongitude(const VECTOR_3D<double>& position_m) {
    if (position_m.x != 0.0 || position_m.y != 0.0) return;
    Log() << LOGGING_LEVEL::ALARM << "geolocation_fast: determination of angle theta failed!\n";
    throw ERROR_DATA();
}

WORKSPACE LocalFrame(const ARGUMENTS& arguments) {
    WORKSPACE work;
    work.distance_m = Length(arguments.position_m);
    if (arguments.rpole_m > work.distance_m) {
        Log() << LOGGING_LEVEL::ALARM << "geolocation_fast: satellite position lies within the earth!\n";
        Log() << LOGGING_LEVEL::ALARM << "geolocation_fast: length of satellite position is: " << work.distance_m
              << "\n";
        throw ERROR_DATA();
    }
    work.satellite_latitude_rad = std::asin(Bounded(arguments.position_m.z / work.distance_m));
    RequireLongitude(arguments.position_m);

    work.e1 = (-1.0 / work.distance_m) * arguments.position_m;
    const VECTOR_3D<double> across = CrossProduct(work.e1, arguments.velocity_m_s);
    const double across_velocity_m_s = Length(across);
    // Rounding leaves some 1e-13 m/s across the vertical when the velocity is vertical; a satellite has km/s.
    if (across_velocity_m_s < 1e-6) {
        LogAndThrow<ERROR_DATA>("geolocation_fast: velocity (%f, %f, %f) has no part across the vertical",
                                arguments.velocity_m_s.x, arguments.velocity_m_s.y, arguments.velocity_m_s.z);
    }
    work.e3 = (1.0 / across_velocity_m_s) * across;
    work.e2 = CrossProduct(work.e3, work.e1);
    // A time from a damaged pool must not overflow; beyond the bound no sphere reaches the Earth anyway.
    work.range_m = std::clamp(arguments.fast_time_s, -kLongestTimeSeconds, kLongestTimeSeconds) * kSpeedOfLight * 0.5;
    return work;
}

[[noreturn]] void FailToIntersect(const WORKSPACE& work) {
    Log() << LOGGING_LEVEL::ALARM
          << "geolocation_fast: No intersection of earth ellipsoid and sphere around the satellite\n";
    Log() << LOGGING_LEVEL::ALARM << "geolocation_fast: during iteration in step: " << work.steps << "\n";
    throw ERROR_DATA();
}

/// One intersection of the sphere around the satellite, the Doppler plane and the sphere of the current radius.
void Step(const ARGUMENTS& arguments, const ENLARGED_ELLIPSOID& ellipsoid, WORKSPACE& work) {
    const double r = work.range_m;
    // Beyond the far side of the Earth; the squares below could overflow.
    if (std::abs(r) > work.distance_m + work.radius_m) FailToIntersect(work);
    const double x =
        (work.distance_m * work.distance_m + r * r - work.radius_m * work.radius_m) / (2.0 * work.distance_m);
    // V . e3 = 0, hence the along-track part alone can meet the Doppler condition.
    const double y = (r * arguments.line_of_sight_velocity_m_s - x * DotProduct(arguments.velocity_m_s, work.e1)) /
                     DotProduct(arguments.velocity_m_s, work.e2);
    const double z2 = r * r - y * y - x * x;
    if (z2 < 0.0) FailToIntersect(work);
    const double z = arguments.look_direction * std::sqrt(z2);
    work.line_of_sight_m = x * work.e1 + y * work.e2 + z * work.e3;

    const double point_z_m = arguments.position_m.z + work.line_of_sight_m.z;
    work.latitude_rad = std::asin(Bounded(point_z_m / work.radius_m));
    const double distance_m = Length(work.line_of_sight_m);
    work.range_residual_m = std::abs(distance_m - r);
    work.doppler_residual_m_s = std::abs(DotProduct(arguments.velocity_m_s, work.line_of_sight_m) / distance_m -
                                         arguments.line_of_sight_velocity_m_s);
    work.previous_radius_m = work.radius_m;
    work.radius_m = ellipsoid.RadiusAt(work.latitude_rad);
}

bool Converged(const WORKSPACE& work) {
    return std::abs(work.radius_m - work.previous_radius_m) < kTolerance && work.range_residual_m < kTolerance &&
           work.doppler_residual_m_s < kTolerance;
}

[[noreturn]] void FailToConverge(const ARGUMENTS& a, const WORKSPACE& work) {
    Log() << LOGGING_LEVEL::ALARM << "geolocation_fast: convergence problem\n";
    Log() << LOGGING_LEVEL::INFO << "geolocation_fast was called with look_direction " << a.look_direction << " height "
          << a.height_m << " rpole " << a.rpole_m << " requator " << a.requator_m << " fast_time " << a.fast_time_s
          << " sat_pos (" << a.position_m.x << ", " << a.position_m.y << ", " << a.position_m.z << ") sat_vel ("
          << a.velocity_m_s.x << ", " << a.velocity_m_s.y << ", " << a.velocity_m_s.z << ")\n";
    Log() << LOGGING_LEVEL::INFO << "accuracy after " << kMaxSteps
          << " steps: " << std::abs(work.radius_m - work.previous_radius_m) << ", " << work.range_residual_m << ", "
          << work.doppler_residual_m_s << " (tolerance " << kTolerance << ")\n";
    throw ERROR_DATA();
}

/// Degrees, 0 <= longitude < 360.
double PointLongitude(const VECTOR_3D<double>& point_m) {
    const double axis_distance_m = std::sqrt(point_m.x * point_m.x + point_m.y * point_m.y);
    if (axis_distance_m == 0.0) {
        Log() << LOGGING_LEVEL::ALARM << "geolocation_fast: unexpected error!\n";
        Log() << LOGGING_LEVEL::ALARM << "earth_vect.x: " << point_m.x << " earth_vect.y: " << point_m.y << "\n";
        throw ERROR_DATA();
    }
    const double angle_deg = std::acos(Bounded(point_m.x / axis_distance_m)) * kDegreesPerRadian;
    if (point_m.y >= 0.0) return angle_deg;
    const double longitude_deg = 360.0 - angle_deg;
    return longitude_deg < 360.0 ? longitude_deg : 0.0;  // a hair west of Greenwich rounds to a whole turn
}

GEOLOCATION Result(const ARGUMENTS& arguments, const ENLARGED_ELLIPSOID& ellipsoid, const WORKSPACE& work) {
    GEOLOCATION result;
    result.point_m = arguments.position_m + work.line_of_sight_m;
    result.longitude_deg = PointLongitude(result.point_m);
    const double latitude_rad = std::atan(std::tan(work.latitude_rad) / (1.0 - ellipsoid.e2));
    result.latitude_deg = latitude_rad * kDegreesPerRadian;
    result.radius_m = Length(result.point_m);

    const double longitude_rad = result.longitude_deg / kDegreesPerRadian;
    const VECTOR_3D<double> normal = {std::cos(latitude_rad) * std::cos(longitude_rad),
                                      std::cos(latitude_rad) * std::sin(longitude_rad), std::sin(latitude_rad)};
    const double cosine = -DotProduct(normal, work.line_of_sight_m) / Length(work.line_of_sight_m);
    result.incidence_deg = std::acos(Bounded(cosine)) * kDegreesPerRadian;
    return result;
}

}  // namespace

GEOLOCATION geolocation_fast(const VECTOR_3D<double>& position_m, const VECTOR_3D<double>& velocity_m_s,
                             double look_direction, double height_m, double rpole_m, double requator_m,
                             double fast_time_s, double line_of_sight_velocity_m_s) {
    const ARGUMENTS arguments = {position_m, velocity_m_s, look_direction, height_m,
                                 rpole_m,    requator_m,   fast_time_s,    line_of_sight_velocity_m_s};
    WORKSPACE work = LocalFrame(arguments);
    const ENLARGED_ELLIPSOID ellipsoid(arguments);
    work.radius_m = ellipsoid.RadiusAt(work.satellite_latitude_rad);
    while (!Converged(work)) {
        ++work.steps;
        Step(arguments, ellipsoid, work);
        // The test comes before each step only: a solution first reached in the last step is refused.
        if (work.steps == kMaxSteps) FailToConverge(arguments, work);
    }
    Log() << LOGGING_LEVEL::TRACE << "geolocation_fast: " << work.steps << " iterations.\n";
    return Result(arguments, ellipsoid, work);
}
