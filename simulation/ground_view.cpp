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

/// Angle between unit vectors, 0 .. 180 degrees: twice the arc tangent of |a - b| / |a + b|, which has no bad place.
/// Source: Abramowitz and Stegun (1964), 4.4.49: the arc tangent of 0 .. 1 to 2e-8.
INLINE double Angle_deg(const POINT_M& a, const POINT_M& b) {
    const double apart = DotProduct(a - b, a - b);
    const double together = DotProduct(a + b, a + b);
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
    const POINT_M satellite = frame.own_satellite_m;
    const POINT_M down = frame.own_down;
    const POINT_M out = frame.own_out;
    const double height2 = DotProduct(satellite, satellite);
    const double below = -DotProduct(satellite, down);
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
            const POINT_M p = satellite + range_m * (c * down + s * out);
            const POINT_M across = range_m * (c * out - s * down);
            const POINT_M normal = {a * p.x, a * p.y, b * p.z};
            const double value = DotProduct(normal, p) - 1.0;
            const double turn = value / (2.0 * DotProduct(normal, across) + 1e-9);
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
INLINE POINT_M SlaveAt(const POINT_M& place, const POINT_M& velocity, const POINT_M& acceleration,
                       const POINT_M& point) {
    double t = 0.0;
#pragma GCC unroll 2
    for (int step = 0; step < 2; ++step) {
        const POINT_M sight = place + t * velocity + (0.5 * t * t) * acceleration - point;
        const POINT_M now = velocity + t * acceleration;
        t = t - DotProduct(now, sight) / (DotProduct(acceleration, sight) + DotProduct(now, now) + 1.0);
    }
    return place + t * velocity + (0.5 * t * t) * acceleration;
}

INLINE void LookBack(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    const POINT_M satellite = frame.satellite_m;
    const POINT_M down = frame.down;
    const POINT_M out = frame.out;
    const POINT_M slave = frame.slave_m;
    const POINT_M slave_velocity = frame.slave_m_s;
    const POINT_M slave_acceleration = frame.slave_m_s2;
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
        const POINT_M away = downs[i] * down + outs[i] * out;
        const POINT_M point = satellite + range_m * away;
        const POINT_M sight = -1.0 * away;
        const POINT_M up = UpAt(point, normal_a_m + heights_m[i], normal_b_m + heights_m[i]);
        const double to_axis = 1.0 / Root(point.x * point.x + point.y * point.y + 1e-6);
        const POINT_M eastward = {-to_axis * point.y, to_axis * point.x, 0.0};
        const POINT_M northward = {-up.z * eastward.y, up.z * eastward.x, up.x * eastward.y - up.y * eastward.x};
        incidence[i] = static_cast<float>(Angle_deg(up, sight));
        local[i] = static_cast<float>(Angle_deg(Unit({normals[0][i], normals[1][i], normals[2][i]}), sight));
        east[i] = static_cast<float>(DotProduct(sight, eastward));
        north[i] = static_cast<float>(DotProduct(sight, northward));
        upward[i] = static_cast<float>(DotProduct(sight, up));

        const POINT_M across = downs[i] * out - outs[i] * down;  // outwards and upwards
        const POINT_M slave_place = SlaveAt(slave, slave_velocity, slave_acceleration, point);
        baseline[i] = static_cast<float>(PerpendicularBaseline_m(satellite, slave_place, across));
        ambiguity[i] = static_cast<float>(HeightOfAmbiguity_m(ambiguity_m, across, up, Unit(slave_place - point)));
    }
}

}  // namespace

void VELMORA_VECTOR_LEVEL::ViewGround(const GROUND_FRAME& frame, double first_column, GROUND_BLOCK& block) {
    FindGround(frame, first_column, block);
    LookBack(frame, first_column, block);
}
