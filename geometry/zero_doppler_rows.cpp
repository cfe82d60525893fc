#include "geometry/zero_doppler_rows.h"

#include <algorithm>
#include <cmath>

#include "geometry/zero_doppler.h"
#include "lib/baselib/containers/vector_clones.h"

namespace {

constexpr int kBlock = 64;              ///< points solved in step; their arrays stay in the first cache
constexpr int kMaxSteps = 16;           ///< three are usual
constexpr double kSmallestSlope = 1e6;  ///< m^2/s^2; a low orbit has 5e7. It bounds the step, hence the powers of it

/// The points of a block and their solutions so far. The places behind the last point repeat it.
struct BLOCK {
    double x_m[kBlock];
    double y_m[kBlock];
    double z_m[kBlock];
    double time_s[kBlock];
    double range_m[kBlock];
    double last_step_s[kBlock];  ///< at most the tolerance: solved
    double given_up[kBlock];     ///< 1: for CalcSlaveTime, 0: not
};

struct SPAN {
    double first_s;
    double last_s;
};

/// 1 when all three hold, else 0; without a branch.
[[gnu::always_inline]] inline double One(bool a, bool b, bool c) {
    return static_cast<double>(static_cast<int>(a) & static_cast<int>(b) & static_cast<int>(c));
}

/// One step of Newton's method for the points that are not solved and whose time lies on the piece. A residual below
/// the tolerance makes a step below it, since the slope is that great: the step alone decides. A point that leaves the
/// span of all pieces is given up.
/// @tparam DEGREE  of the piece or higher: its further terms are 0. Known to the compiler, the loop over the points is
///                 the only one and becomes vector code.
/// @return number of unsolved points, given up or not
template <int DEGREE>
[[gnu::always_inline]] inline long long StepBlock(const ORBIT_PIECE& __restrict piece, const SPAN& all,
                                                  const ROW_ORBIT& orbit, BLOCK& __restrict block) {
    const SPAN span = all;
    // Plain pointers: the compiler does not vectorise over the members themselves.
    const double* __restrict x_m = block.x_m;
    const double* __restrict y_m = block.y_m;
    const double* __restrict z_m = block.z_m;
    double* __restrict times_s = block.time_s;
    double* __restrict ranges_m = block.range_m;
    double* __restrict last_steps_s = block.last_step_s;
    double* __restrict given_up = block.given_up;
    const double offset_s = orbit.handle.offset_s;
    const double guess_s = orbit.first_guess_s;
    const SPAN here = {piece.first_s, piece.last_s < span.last_s ? piece.last_s : span.last_s + 1.0};
    const double centre_s = piece.centre_s;
    long long unsolved = 0;
    for (int i = 0; i < kBlock; ++i) {
        const double time_s = times_s[i];
        const double at_s = time_s + offset_s;
        const double u = at_s - centre_s;
        double sx = 0.0, sy = 0.0, sz = 0.0;
        double vx = 0.0, vy = 0.0, vz = 0.0;
        double ax = 0.0, ay = 0.0, az = 0.0;
#pragma GCC unroll 24
        for (int k = DEGREE; k >= 0; --k) {
            const ORBIT_PIECE::TERM& term = piece.terms[k];
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
        const double range_m = std::sqrt(rx * rx + ry * ry + rz * rz);

        // 1 or 0, and products with them: a choice between results would let the compiler jump around the computation.
        const double last_step_s = last_steps_s[i];
        const double moves =
            One(std::abs(last_step_s) > kZeroDopplerTolerance, at_s >= here.first_s, at_s < here.last_s);
        const double next_s = time_s - moves * step_s;
        const double next_at_s = next_s + offset_s;
        const double stays = One(slope > kSmallestSlope, next_at_s >= span.first_s, next_at_s <= span.last_s);
        const double leaves = moves * (1.0 - stays);
        const double kept_step_s = moves * step_s + (1.0 - moves) * last_step_s;
        const double next_step_s = (1.0 - leaves) * kept_step_s;
        ranges_m[i] = moves * range_m + (1.0 - moves) * ranges_m[i];
        times_s[i] = (1.0 - leaves) * next_s + leaves * guess_s;
        last_steps_s[i] = next_step_s;
        given_up[i] += leaves;
        unsolved += std::abs(next_step_s) > kZeroDopplerTolerance ? 1 : 0;
    }
    return unsolved;
}

using STEP = long long(const ORBIT_PIECE&, const SPAN&, const ROW_ORBIT&, BLOCK&);

#define VELMORA_STEP_OF_DEGREE(degree)                                                               \
    VELMORA_VECTOR_CLONES long long StepOfDegree##degree(const ORBIT_PIECE& piece, const SPAN& span, \
                                                         const ROW_ORBIT& orbit, BLOCK& block) {     \
        return StepBlock<degree>(piece, span, orbit, block);                                         \
    }
VELMORA_STEP_OF_DEGREE(5)
VELMORA_STEP_OF_DEGREE(7)
VELMORA_STEP_OF_DEGREE(11)
VELMORA_STEP_OF_DEGREE(23)
#undef VELMORA_STEP_OF_DEGREE

STEP* StepFor(int degree) {
    if (degree <= 5) return StepOfDegree5;
    if (degree <= 7) return StepOfDegree7;
    if (degree <= 11) return StepOfDegree11;
    static_assert(ORBIT_PIECE::kMaxDegree == 23);
    return StepOfDegree23;
}

bool IsUnsolved(const BLOCK& block, int i) {
    return std::abs(block.last_step_s[i]) > kZeroDopplerTolerance;
}

/// Every point goes from piece to piece by its own time alone, as if it were solved on its own.
void SolveBlock(const ROW_ORBIT& orbit, BLOCK& block) {
    const std::vector<ORBIT_PIECE>& pieces = orbit.compiled->Pieces();
    const SPAN span = {pieces.front().first_s, pieces.back().last_s};
    int first_unsolved = 0;
    for (int i = 0; i < kMaxSteps; ++i) {
        while (!IsUnsolved(block, first_unsolved)) ++first_unsolved;
        const ORBIT_PIECE* const piece = orbit.compiled->PieceAt(block.time_s[first_unsolved] + orbit.handle.offset_s);
        if (StepFor(piece->degree)(*piece, span, orbit, block) == 0) return;
    }
}

void Load(const ROW_ORBIT& orbit, const ROW_POINTS& points, int first, int size, BLOCK& block) {
    for (int i = 0; i < kBlock; ++i) {
        const int from = first + std::min(i, size - 1);
        block.x_m[i] = points.x_m[from];
        block.y_m[i] = points.y_m[from];
        block.z_m[i] = points.z_m[from];
        block.time_s[i] = orbit.first_guess_s;
        block.range_m[i] = 0.0;
        block.last_step_s[i] = 1.0;
        block.given_up[i] = 0.0;
    }
}

}  // namespace

void SolveZeroDopplerRow(const ROW_ORBIT& orbit, const ROW_POINTS& points, int first, int count, double* time_s,
                         double* range_m) {
    const bool compiled = orbit.compiled->PieceAt(orbit.first_guess_s + orbit.handle.offset_s) != nullptr;
    BLOCK block;
    const int end = first + count;
    for (int next = first; next < end; next += kBlock) {
        const int size = std::min(kBlock, end - next);
        if (compiled) {
            Load(orbit, points, next, size, block);
            SolveBlock(orbit, block);
        }
        for (int i = 0; i < size; ++i) {
            if (compiled && block.given_up[i] == 0.0 && !IsUnsolved(block, i)) {
                time_s[next + i] = block.time_s[i];
                range_m[next + i] = block.range_m[i];
                continue;
            }
            const VECTOR_3D<double> point_m = {points.x_m[next + i], points.y_m[next + i], points.z_m[next + i]};
            time_s[next + i] = CalcSlaveTime(orbit.handle, point_m, &range_m[next + i], orbit.first_guess_s);
        }
    }
}
