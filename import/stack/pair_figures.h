/// \file pair_figures.h
/// What a pair is good for: baseline, time between its images, height of ambiguity, at the centre of the scene.
/// Formulas: geometry/pair_geometry.h. Frame: Earth-fixed, metres, seconds.

#pragma once

#include "import/pair/pair_orbits.h"
#include "import/stack/stack_image.h"

inline constexpr double kSecondsPerDay = 86400.0;

struct PAIR_FIGURES {
    double perpendicular_baseline_m = 0.0;  ///< positive: the slave is above the master's line of sight
    double time_difference_s = 0.0;         ///< slave's zero-Doppler time of the centre minus the master's
    double height_of_ambiguity_m = 0.0;     ///< above 0; infinite without a baseline
};

/// @param part      of the master's image, whose centre counts
/// @param height_m  of the ground there, above the ellipsoid
/// @throws COMPANION_ERROR when the slave's orbit does not pass the centre, or the range does not reach the ground
[[nodiscard]] PAIR_FIGURES FiguresOfPair(const STACK_IMAGE& master, const STACK_IMAGE& slave, const IMAGE_PART& part,
                                         double height_m);
