#include "geometry/zero_doppler_rows.h"

#include <algorithm>
#include <cmath>

#include "geometry/zero_doppler.h"
#include "geometry/zero_doppler_step.h"

namespace {

using BLOCK = ZERO_DOPPLER_BLOCK;
constexpr int kMostSteps = 16;  ///< three are usual

bool IsUnsolved(const BLOCK& block, int i) {
    return std::abs(block.last_step_s[i]) > kZeroDopplerTolerance;
}

/// Every point goes from piece to piece by its own time alone, as if it were solved on its own.
void SolveBlock(VECTOR_LEVEL level, const ROW_ORBIT& orbit, BLOCK& block) {
    const std::vector<ORBIT_PIECE>& pieces = orbit.compiled->Pieces();
    const STEP_FRAME frame = {pieces.front().first_s, pieces.back().last_s, orbit.handle.offset_s, orbit.first_guess_s};
    const auto step_block = VELMORA_AT_LEVEL(level, StepBlock);
    int first_unsolved = 0;
    for (int i = 0; i < kMostSteps; ++i) {
        while (!IsUnsolved(block, first_unsolved)) ++first_unsolved;
        const ORBIT_PIECE* const piece = orbit.compiled->PieceAt(block.time_s[first_unsolved] + orbit.handle.offset_s);
        if (step_block(*piece, frame, block) == 0) return;
    }
}

void Load(const ROW_ORBIT& orbit, const ROW_POINTS& points, int first, int size, BLOCK& block) {
    for (int i = 0; i < BLOCK::kSize; ++i) {
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

int SolveZeroDopplerRow(VECTOR_LEVEL level, const ROW_ORBIT& orbit, const ROW_POINTS& points, int first, int count,
                        double* time_s, double* range_m) {
    const bool compiled = orbit.compiled->PieceAt(orbit.first_guess_s + orbit.handle.offset_s) != nullptr;
    BLOCK block;
    int one_by_one = 0;
    const int end = first + count;
    for (int next = first; next < end; next += BLOCK::kSize) {
        const int size = std::min(BLOCK::kSize, end - next);
        if (compiled) {
            Load(orbit, points, next, size, block);
            SolveBlock(level, orbit, block);
        }
        for (int i = 0; i < size; ++i) {
            if (compiled && block.given_up[i] == 0.0 && !IsUnsolved(block, i)) {
                time_s[next + i] = block.time_s[i];
                range_m[next + i] = block.range_m[i];
                continue;
            }
            ++one_by_one;
            const VECTOR_3D<double> point_m = {points.x_m[next + i], points.y_m[next + i], points.z_m[next + i]};
            time_s[next + i] = CalcSlaveTime(orbit.handle, point_m, &range_m[next + i], orbit.first_guess_s);
        }
    }
    return one_by_one;
}
