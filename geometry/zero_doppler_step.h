/// \file zero_doppler_step.h
/// One step of Newton's method for many points on one piece of a compiled orbit, compiled once per vector level.
/// Threads: no shared state.

#pragma once

#include "lib/baselib/vectors/vector_level.h"
#include "orbit/compiled_orbit.h"

/// Points solved in step. Their arrays stay in the first cache; places behind the last point repeat it.
struct ZERO_DOPPLER_BLOCK {
    static constexpr int kSize = 64;
    double x_m[kSize];
    double y_m[kSize];
    double z_m[kSize];
    double time_s[kSize];
    double range_m[kSize];
    double last_step_s[kSize];  ///< at most the tolerance: solved
    double given_up[kSize];     ///< 1: left the compiled span, 0: not
};

/// The compiled span, and how the points' times are counted.
struct STEP_FRAME {
    double first_s;  ///< of the span, on the orbit's axis
    double last_s;
    double offset_s;       ///< from the points' axis to the orbit's
    double first_guess_s;  ///< where a point that leaves the span is put back to, on the points' axis
};

/// Moves the points that are not solved and whose time lies on the piece.
/// @return number of unsolved points, given up or not
VELMORA_AT_EVERY_LEVEL(long long StepBlock(const ORBIT_PIECE& piece, const STEP_FRAME& frame,
                                           ZERO_DOPPLER_BLOCK& block))
