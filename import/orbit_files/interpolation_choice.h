/// \file interpolation_choice.h
/// Which interpolation suits state vectors, by their spacing and number: the figures stand in docs/orbits.md.

#pragma once

#include <string>
#include <vector>

struct INTERPOLATION_CHOICE {
    std::string text;    ///< value of orbit_interpolation
    std::string reason;  ///< for the user
};

/// @param times_s  of the vectors, increasing, at least two
[[nodiscard]] INTERPOLATION_CHOICE ChooseInterpolation(const std::vector<double>& times_s);
