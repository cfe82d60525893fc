#include "simulation/ground_view.h"

#include "geometry/constants.h"
#include "geometry/pair_geometry.h"

namespace {

constexpr int kSize = GROUND_BLOCK::kSize;

#define INLINE [[gnu::always_inline]] inline

using POINT_M = VECTOR_3D<double>;

INLINE double Root(double a) {
    return __builtin_sqrt(a);
}
/// 1 or 0. Here and below no choice between results: it would let the compiler jump around the computation, which is
/// then no vector code. Divisors get a small addend instead of a bound.
INLINE double One(bool truth) {
    return static_cast<double>(static_cast<int>(truth));
}
/// The angle between two directions of any length as a fraction, which has no bad place: the tangent of it, or of what
/// is left to the next right angle.
struct ANGLE {
    double less;
    double more;
    bool is_steep;  ///< nearer to 90 degrees than to 0 or 180
    bool is_wide;   ///< above 90 degrees
};

/// @param sine, cosine  both of any common length
INLINE ANGLE AngleOf(double sine, double cosine) {
    const double along = __builtin_fabs(cosine);
    const bool is_steep = sine > along;
    return {is_steep ? along : sine, is_steep ? sine : along, is_steep, cosine < 0.0};
}

INLINE ANGLE AngleBetween(const POINT_M& a, const POINT_M& b) {
    const POINT_M across = CrossProduct(a, b);
    return AngleOf(Root(DotProduct(across, across) + 1e-60), DotProduct(a, b));
}

/// The angle in degrees, 0 .. 180.
/// @param t  less / more
/// Source: Abramowitz and Stegun (1964), 4.4.49: the arc tangent of 0 .. 1 to 2e-8.
INLINE double Degrees(const ANGLE& angle, double t) {
    const double t2 = t * t;
    double sum = 0.0028662257;
    sum = sum * t2 - 0.0161657367;
    sum = sum * t2 + 0.0429096138;
    sum = sum * t2 - 0.0752896400;
    sum = sum * t2 + 0.1065626393;
    sum = sum * t2 - 0.1420889944;
    sum = sum * t2 + 0.1999355085;
    sum = sum * t2 - 0.3333314528;
    sum = sum * t2 + 1.0;
    const double small = kDegreesPerRadian * (t * sum);
    const double steep = One(angle.is_steep);
    const double acute = steep * 90.0 + (1.0 - 2.0 * steep) * small;
    const double wide = One(angle.is_wide);
    return wide * 180.0 + (1.0 - 2.0 * wide) * acute;
}

/// (a + h) / (b + h) for semi-axes a, b that differ little, with no division: to 1e-11.
/// @param flattening  a / b - 1
/// @param part        h / b
INLINE double AxesRatio(double flattening, double part) {
    return 1.0 + flattening * (1.0 - part * (1.0 - part * (1.0 - part)));
}

/// Newton's method on the ellipsoid whose semi-axes are longer by the height, from a sphere's solution, which is wrong
/// by some 1e-4 rad. Divisions and roots are nearly all of the time: the second step takes the slope of the first, and
/// lengths that differ from 1 by a square are brought there without a root.
INLINE void FindGround(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    constexpr int kSteps = 2;
    const POINT_M satellite = frame.own_satellite_m;
    const POINT_M down = frame.own_down;
    const POINT_M out = frame.own_out;
    const double height2 = DotProduct(satellite, satellite);
    const double half_below = -0.5 / DotProduct(satellite, down);
    const double a_m = frame.a_m;
    const double per_b = 1.0 / frame.b_m;
    const double flattening = frame.a_m / frame.b_m - 1.0;
    const double first_range_m = frame.first_range_m + first_column * frame.range_step_m;
    const double range_step_m = frame.range_step_m;
    const double radius_m = block.radius_m;
    const float* const heights_m = block.height_m;
    double* const downs = block.down;
    double* const outs = block.out;
    for (int i = 0; i < kSize; ++i) {
        const double range_m = first_range_m + i * range_step_m;
        const double height_m = heights_m[i];
        const double axis_m = a_m + height_m;
        const double ratio = AxesRatio(flattening, height_m * per_b);
        const double polar = ratio * ratio;
        const double r = radius_m + height_m;
        double c = (height2 + range_m * range_m - r * r) * half_below / range_m;
        double s = Root(__builtin_fabs(1.0 - c * c));
        double per_slope = 0.0;
#pragma GCC unroll 2
        for (int step = 0; step < kSteps; ++step) {
            const POINT_M p = satellite + range_m * (c * down + s * out);
            const POINT_M normal = {p.x, p.y, polar * p.z};
            const double value = DotProduct(normal, p) - axis_m * axis_m;
            if (step == 0) per_slope = 1.0 / (2.0 * range_m * DotProduct(normal, c * out - s * down) + 1e-9);
            const double turn = value * per_slope;
            const double turned = c + turn * s;  // the angle falls by the turn
            s = s - turn * c;
            c = turned;
        }
        const double stretch = 1.5 - 0.5 * (c * c + s * s);
        downs[i] = c * stretch;
        outs[i] = s * stretch;
    }
}

/// 1 / root(1 + e) for a small e, by its series: to 1e-12 for what the Earth's flattening and heights make of it.
INLINE double PerRoot(double e) {
    return 1.0 - e * (0.5 - e * (0.375 - e * (0.3125 - e * (0.2734375 - e * (0.24609375 - e * 0.2255859375)))));
}

/// Where the slave is when it sees the point at zero Doppler: one step of Newton's method along its parabola, whose
/// slope changes by less than 1e-3 in a second.
INLINE POINT_M SlaveAt(const POINT_M& place, const POINT_M& velocity, const POINT_M& acceleration,
                       const POINT_M& point) {
    const POINT_M sight = place - point;
    const double t =
        -DotProduct(velocity, sight) / (DotProduct(acceleration, sight) + DotProduct(velocity, velocity) + 1.0);
    return place + t * velocity + (0.5 * t * t) * acceleration;
}

INLINE void LookBack(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    const POINT_M satellite = frame.satellite_m;
    const POINT_M down = frame.down;
    const POINT_M out = frame.out;
    const POINT_M slave = frame.slave_m;
    const POINT_M slave_velocity = frame.slave_m_s;
    const POINT_M slave_acceleration = frame.slave_m_s2;
    const double flattening = frame.normal_a_m / frame.normal_b_m - 1.0;
    const double per_a = 1.0 / frame.normal_a_m;
    const double per_b = 1.0 / frame.normal_b_m;
    const float* const heights_m = block.height_m;
    const double ambiguity_m = frame.ambiguity_m;
    const double first_range_m = frame.first_range_m + first_column * frame.range_step_m;
    const double range_step_m = frame.range_step_m;
    const double* const downs = block.down;
    const double* const outs = block.out;
    float* __restrict const incidence = block.views[static_cast<int>(VIEW::INCIDENCE_DEG)];
    float* __restrict const local = block.views[static_cast<int>(VIEW::LOCAL_INCIDENCE_DEG)];
    const float(&normals)[3][kSize] = block.normal;
    float* __restrict const baseline = block.views[static_cast<int>(VIEW::PERPENDICULAR_BASELINE_M)];
    float* __restrict const ambiguity = block.views[static_cast<int>(VIEW::HEIGHT_OF_AMBIGUITY_M)];
    float* __restrict const east = block.views[static_cast<int>(VIEW::LINE_OF_SIGHT_EAST)];
    float* __restrict const north = block.views[static_cast<int>(VIEW::LINE_OF_SIGHT_NORTH)];
    float* __restrict const upward = block.views[static_cast<int>(VIEW::LINE_OF_SIGHT_UP)];
    for (int i = 0; i < kSize; ++i) {
        const double range_m = first_range_m + i * range_step_m;
        const POINT_M away = downs[i] * down + outs[i] * out;
        const POINT_M point = satellite + range_m * away;
        const POINT_M sight = -1.0 * away;
        const double ratio = AxesRatio(flattening, static_cast<double>(heights_m[i]) * per_b);
        const POINT_M upward_normal = {point.x, point.y, ratio * ratio * point.z};
        const POINT_M normal = {static_cast<double>(normals[0][i]), static_cast<double>(normals[1][i]),
                                static_cast<double>(normals[2][i])};
        const double from_axis = Root(point.x * point.x + point.y * point.y + 1e-6);
        const double per_length = per_a * PerRoot(DotProduct(upward_normal, upward_normal) * (per_a * per_a) - 1.0);
        const POINT_M up = per_length * upward_normal;
        const double up_sight = DotProduct(sight, up);
        const ANGLE to_up = AngleOf(Root(__builtin_fabs(1.0 - up_sight * up_sight)), up_sight);
        const ANGLE to_local_up = AngleBetween(normal, sight);
        const double per_all = 1.0 / (from_axis * to_up.more * to_local_up.more);  // one division for three
        incidence[i] = static_cast<float>(Degrees(to_up, to_up.less * (per_all * from_axis * to_local_up.more)));
        local[i] = static_cast<float>(Degrees(to_local_up, to_local_up.less * (per_all * from_axis * to_up.more)));
        const double to_axis = per_all * to_up.more * to_local_up.more;
        const POINT_M eastward = {-to_axis * point.y, to_axis * point.x, 0.0};
        const POINT_M northward = {-up.z * eastward.y, up.z * eastward.x, up.x * eastward.y - up.y * eastward.x};
        east[i] = static_cast<float>(DotProduct(sight, eastward));
        north[i] = static_cast<float>(DotProduct(sight, northward));
        upward[i] = static_cast<float>(up_sight);

        const POINT_M across = downs[i] * out - outs[i] * down;  // outwards and upwards
        const POINT_M slave_place = SlaveAt(slave, slave_velocity, slave_acceleration, point);
        baseline[i] = static_cast<float>(PerpendicularBaseline_m(satellite, slave_place, across));
        const POINT_M slave_sight = slave_place - point;
        const double slave_range_m = Root(DotProduct(slave_sight, slave_sight));
        // The line of sight is longer than 1 by the range, and so is what is divided by it.
        ambiguity[i] = static_cast<float>(HeightOfAmbiguity_m(ambiguity_m * slave_range_m, across, up, slave_sight));
    }
}

}  // namespace

void VELMORA_VECTOR_LEVEL::ViewGround(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    FindGround(frame, first_column, block);
    LookBack(frame, first_column, block);
}
