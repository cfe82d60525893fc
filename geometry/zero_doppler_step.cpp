#include "geometry/zero_doppler_step.h"

#include "geometry/zero_doppler.h"

namespace {

constexpr int kSize = ZERO_DOPPLER_BLOCK::kSize;
constexpr int kComponents = ORBIT_PIECE::kComponents;
constexpr double kSmallestSlope = 1e6;  ///< m^2/s^2; a low orbit has 5e7. It bounds the step, hence the powers of it

/// 1 when all three hold, else 0; without a branch.
[[gnu::always_inline]] inline double One(bool a, bool b, bool c) {
    return static_cast<double>(static_cast<int>(a) & static_cast<int>(b) & static_cast<int>(c));
}

/// A residual below the tolerance makes a step below it, since the slope is that great: the step alone decides.
/// @tparam DEGREE  of the piece or higher: its further terms are 0. Known to the compiler, the loop over the points is
///                 the only one and becomes vector code.
template <int DEGREE>
[[gnu::always_inline]] inline long long Step(const double* __restrict terms, double centre_s, double piece_first_s,
                                             double piece_last_s, const STEP_FRAME frame,
                                             ZERO_DOPPLER_BLOCK& __restrict block) {
    // Plain pointers: the compiler does not vectorise over the members themselves.
    const double* __restrict x_m = block.x_m;
    const double* __restrict y_m = block.y_m;
    const double* __restrict z_m = block.z_m;
    double* __restrict times_s = block.time_s;
    double* __restrict ranges_m = block.range_m;
    double* __restrict last_steps_s = block.last_step_s;
    double* __restrict given_up = block.given_up;
    long long unsolved = 0;
    for (int i = 0; i < kSize; ++i) {
        const double time_s = times_s[i];
        const double at_s = time_s + frame.offset_s;
        const double u = at_s - centre_s;
        double sx = 0.0, sy = 0.0, sz = 0.0;
        double vx = 0.0, vy = 0.0, vz = 0.0;
        double ax = 0.0, ay = 0.0, az = 0.0;
#pragma GCC unroll 24
        for (int k = DEGREE; k >= 0; --k) {
            const double* const term = terms + k * kComponents;
            sx = sx * u + term[0];
            sy = sy * u + term[1];
            sz = sz * u + term[2];
            vx = vx * u + term[3];
            vy = vy * u + term[4];
            vz = vz * u + term[5];
            ax = ax * u + term[6];
            ay = ay * u + term[7];
            az = az * u + term[8];
        }
        const double rx = sx - x_m[i];
        const double ry = sy - y_m[i];
        const double rz = sz - z_m[i];
        const double residual = vx * rx + vy * ry + vz * rz;
        const double slope = ax * rx + ay * ry + az * rz + (vx * vx + vy * vy + vz * vz);
        const double divisor = slope > kSmallestSlope ? slope : kSmallestSlope;
        const double step_s = residual / divisor;
        const double range_m = __builtin_sqrt(rx * rx + ry * ry + rz * rz);

        // 1 or 0, and products with them: a choice between results would let the compiler jump around the computation.
        const double last_step_s = last_steps_s[i];
        const double moves =
            One(__builtin_fabs(last_step_s) > kZeroDopplerTolerance, at_s >= piece_first_s, at_s < piece_last_s);
        const double next_s = time_s - moves * step_s;
        const double next_at_s = next_s + frame.offset_s;
        const double stays = One(slope > kSmallestSlope, next_at_s >= frame.first_s, next_at_s <= frame.last_s);
        const double leaves = moves * (1.0 - stays);
        const double kept_step_s = moves * step_s + (1.0 - moves) * last_step_s;
        const double next_step_s = (1.0 - leaves) * kept_step_s;
        ranges_m[i] = moves * range_m + (1.0 - moves) * ranges_m[i];
        times_s[i] = (1.0 - leaves) * next_s + leaves * frame.first_guess_s;
        last_steps_s[i] = next_step_s;
        given_up[i] += leaves;
        unsolved += __builtin_fabs(next_step_s) > kZeroDopplerTolerance ? 1 : 0;
    }
    return unsolved;
}

}  // namespace

long long VELMORA_VECTOR_LEVEL::StepBlock(const ORBIT_PIECE& piece, const STEP_FRAME& frame,
                                          ZERO_DOPPLER_BLOCK& block) {
    static_assert(sizeof(ORBIT_PIECE::TERM) == kComponents * sizeof(double));
    const auto* const terms = reinterpret_cast<const double*>(&piece.terms);
    // The last time of all belongs to the last piece.
    const double last_s = piece.last_s < frame.last_s ? piece.last_s : frame.last_s + 1.0;
    if (piece.degree <= 5) return Step<5>(terms, piece.centre_s, piece.first_s, last_s, frame, block);
    if (piece.degree <= 7) return Step<7>(terms, piece.centre_s, piece.first_s, last_s, frame, block);
    if (piece.degree <= 11) return Step<11>(terms, piece.centre_s, piece.first_s, last_s, frame, block);
    static_assert(ORBIT_PIECE::kMaxDegree == 23);
    return Step<23>(terms, piece.centre_s, piece.first_s, last_s, frame, block);
}
