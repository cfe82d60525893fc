/// \file interpolation_request.h
/// The interpolation text of an orbit: name, order and support point count, as in "localpolyfit_5_9".
///
///     text := name { separator+ word }        separator: any of _ , ; : - ( )
///
/// The second word is the order, the third the support point count; further words are ignored. What each interpolation
/// uses, and what it takes when the word is missing (good for state vectors every 10 s, see docs/orbits.md):
///
///     polynom, spline                 nothing
///     polyfit, chebyshev              order 9
///     localpolynom                    count 8
///     localpolyfit, localchebyshev    order 7, count 9
///     hermite                         count 4, the nodes
///     localhermite                    count 4, a piece and its nodes
///     everett                         order 6
///
/// Words that an interpolation does not use may hold anything: in "hermite_0_8" nobody reads the 0.

#pragma once

#include <string>

#include "orbit/orbit_ids.h"

struct INTERPOLATION_REQUEST {
    INTERPOLATION_ID id = INTERPOLATION_ID::POLYNOM;
    int poly_fit_order = -1;       ///< -1: not used, leave the interpolator's own
    int support_point_count = -1;  ///< likewise
};

inline constexpr int kHighestOrder = 100;
inline constexpr int kMostSupportPoints = 100;

/// Defaults are told at INFO, the words found at PARAMETER.
/// @throws ERROR_ARGUMENT, after logging, for a text without a word, an unknown name, and for a word that is used and
/// is no decimal number or outside its range (order 0 to 100, count 2 to 100, nodes of hermite 1 to 100)
[[nodiscard]] INTERPOLATION_REQUEST ParseInterpolationText(const std::string& text);

/// The fewest state vectors that serve this request. Fits lower their order and local pieces their count instead, so
/// two are enough for them.
[[nodiscard]] int FewestStateVectors(const INTERPOLATION_REQUEST& request);
