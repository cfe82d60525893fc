#include "simulation/ground_view.h"

#include "geometry/constants.h"

namespace {

constexpr int kSize = GROUND_BLOCK::kSize;

#define INLINE [[gnu::always_inline]] inline

struct XYZ {
    double x, y, z;
};

INLINE XYZ Of(const VECTOR_3D<double>& v) {
    return {v.x, v.y, v.z};
}
INLINE XYZ operator+(const XYZ& a, const XYZ& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
INLINE XYZ operator-(const XYZ& a, const XYZ& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
INLINE XYZ operator*(double f, const XYZ& a) {
    return {f * a.x, f * a.y, f * a.z};
}
INLINE double Dot(const XYZ& a, const XYZ& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
INLINE double Root(double a) {
    return __builtin_sqrt(a);
}
/// 1 or 0. Here and below no choice between results: it would let the compiler jump around the computation, which is
/// then no vector code. Divisors get a small addend instead of a bound.
INLINE double One(bool truth) {
    return static_cast<double>(static_cast<int>(truth));
}
INLINE XYZ Unit(const XYZ& a) {
    return (1.0 / Root(Dot(a, a) + 1e-300)) * a;
}

/// Angle between unit vectors, 0 .. 180 degrees: twice the arc tangent of |a - b| / |a + b|, which has no bad place.
/// Source: Abramowitz and Stegun (1964), 4.4.49: the arc tangent of 0 .. 1 to 2e-8.
INLINE double Angle_deg(const XYZ& a, const XYZ& b) {
    const double apart = Dot(a - b, a - b);
    const double together = Dot(a + b, a + b);
    const bool is_wide = apart > together;
    const double less = is_wide ? together : apart;
    const double more = is_wide ? apart : together;
    const double t2 = less / (more + 1e-300);
    double sum = 0.0028662257;
    sum = sum * t2 - 0.0161657367;
    sum = sum * t2 + 0.0429096138;
    sum = sum * t2 - 0.0752896400;
    sum = sum * t2 + 0.1065626393;
    sum = sum * t2 - 0.1420889944;
    sum = sum * t2 + 0.1999355085;
    sum = sum * t2 - 0.3333314528;
    sum = sum * t2 + 1.0;
    const double angle = 2.0 * kDegreesPerRadian * (Root(t2) * sum);
    const double wide = One(is_wide);
    return wide * 180.0 + (1.0 - 2.0 * wide) * angle;
}

/// Newton's method on the ellipsoid whose semi-axes are longer by the height, from a sphere's solution.
INLINE void FindGround(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    constexpr int kSteps = 3;  // the sphere is wrong by some 1e-3 rad, and each step squares that
    const XYZ satellite = Of(frame.own_satellite_m);
    const XYZ down = Of(frame.own_down);
    const XYZ out = Of(frame.own_out);
    const double height2 = Dot(satellite, satellite);
    const double below = -Dot(satellite, down);
    const double a_m = frame.a_m;
    const double b_m = frame.b_m;
    const double first_range_m = frame.first_range_m + first_column * frame.range_step_m;
    const double range_step_m = frame.range_step_m;
    const double radius_m = frame.radius_m;
    const double* const heights_m = block.height_m;
    double* const downs = block.down;
    double* const outs = block.out;
    for (int i = 0; i < kSize; ++i) {
        const double range_m = first_range_m + i * range_step_m;
        const double a = 1.0 / ((a_m + heights_m[i]) * (a_m + heights_m[i]));
        const double b = 1.0 / ((b_m + heights_m[i]) * (b_m + heights_m[i]));
        const double r = radius_m + heights_m[i];
        double c = (height2 + range_m * range_m - r * r) / (2.0 * range_m * below);
        double s = Root(__builtin_fabs(1.0 - c * c));
#pragma GCC unroll 3
        for (int step = 0; step < kSteps; ++step) {
            const XYZ p = satellite + range_m * (c * down + s * out);
            const XYZ across = range_m * (c * out - s * down);
            const XYZ normal = {a * p.x, a * p.y, b * p.z};
            const double value = Dot(normal, p) - 1.0;
            const double turn = value / (2.0 * Dot(normal, across) + 1e-9);
            const double turned = c + turn * s;  // the angle falls by the turn
            s = s - turn * c;
            c = turned;
            const double stretch = 1.0 / Root(c * c + s * s);
            c = c * stretch;
            s = s * stretch;
        }
        downs[i] = c;
        outs[i] = s;
    }
}

/// Where the slave is when it sees the point at zero Doppler: two steps of Newton's method along its parabola.
INLINE XYZ SlaveAt(const XYZ& place, const XYZ& velocity, const XYZ& acceleration, const XYZ& point) {
    double t = 0.0;
#pragma GCC unroll 2
    for (int step = 0; step < 2; ++step) {
        const XYZ sight = place + t * velocity + (0.5 * t * t) * acceleration - point;
        const XYZ now = velocity + t * acceleration;
        t = t - Dot(now, sight) / (Dot(acceleration, sight) + Dot(now, now) + 1.0);
    }
    return place + t * velocity + (0.5 * t * t) * acceleration;
}

INLINE void LookBack(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    const XYZ satellite = Of(frame.satellite_m);
    const XYZ down = Of(frame.down);
    const XYZ out = Of(frame.out);
    const XYZ slave = Of(frame.slave_m);
    const XYZ slave_velocity = Of(frame.slave_m_s);
    const XYZ slave_acceleration = Of(frame.slave_m_s2);
    const double normal_a_m = frame.normal_a_m;
    const double normal_b_m = frame.normal_b_m;
    const double* const heights_m = block.height_m;
    const double ambiguity_m = frame.ambiguity_m;
    const double first_range_m = frame.first_range_m + first_column * frame.range_step_m;
    const double range_step_m = frame.range_step_m;
    const double* const downs = block.down;
    const double* const outs = block.out;
    float* __restrict const incidence = block.views[static_cast<int>(VIEW::INCIDENCE_DEG)];
    float* __restrict const local = block.views[static_cast<int>(VIEW::LOCAL_INCIDENCE_DEG)];
    const double(&normals)[3][kSize] = block.normal;
    float* __restrict const baseline = block.views[static_cast<int>(VIEW::PERPENDICULAR_BASELINE_M)];
    float* __restrict const ambiguity = block.views[static_cast<int>(VIEW::HEIGHT_OF_AMBIGUITY_M)];
    float* __restrict const east = block.views[static_cast<int>(VIEW::LINE_OF_SIGHT_EAST)];
    float* __restrict const north = block.views[static_cast<int>(VIEW::LINE_OF_SIGHT_NORTH)];
    float* __restrict const upward = block.views[static_cast<int>(VIEW::LINE_OF_SIGHT_UP)];
    for (int i = 0; i < kSize; ++i) {
        const double range_m = first_range_m + i * range_step_m;
        const XYZ away = downs[i] * down + outs[i] * out;
        const XYZ point = satellite + range_m * away;
        const XYZ sight = -1.0 * away;
        const double ratio = (normal_b_m + heights_m[i]) / (normal_a_m + heights_m[i]);
        const XYZ up = Unit({ratio * ratio * point.x, ratio * ratio * point.y, point.z});
        const double to_axis = 1.0 / Root(point.x * point.x + point.y * point.y + 1e-6);
        const XYZ eastward = {-to_axis * point.y, to_axis * point.x, 0.0};
        const XYZ northward = {-up.z * eastward.y, up.z * eastward.x, up.x * eastward.y - up.y * eastward.x};
        incidence[i] = static_cast<float>(Angle_deg(up, sight));
        local[i] = static_cast<float>(Angle_deg(Unit({normals[0][i], normals[1][i], normals[2][i]}), sight));
        east[i] = static_cast<float>(Dot(sight, eastward));
        north[i] = static_cast<float>(Dot(sight, northward));
        upward[i] = static_cast<float>(Dot(sight, up));

        const XYZ across = downs[i] * out - outs[i] * down;  // outwards and upwards
        const XYZ slave_place = SlaveAt(slave, slave_velocity, slave_acceleration, point);
        baseline[i] = static_cast<float>(Dot(slave_place - satellite, across));
        // A point that moves across the master's line of sight keeps its range there.
        const double range_change = __builtin_fabs(Dot(Unit(slave_place - point), across));
        ambiguity[i] = static_cast<float>(ambiguity_m * Dot(across, up) / (range_change + 1e-30));
    }
}

}  // namespace

void VELMORA_VECTOR_LEVEL::ViewGround(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    FindGround(frame, first_column, block);
    LookBack(frame, first_column, block);
}
