/// \file scaled_fit.h
/// What the fitting interpolators share: the abscissa mapped to -1..1, the order lowered where there are too few
/// points, the fit itself in double, and the line about dropped singular values.

#pragma once

#include <vector>

#include "orbit/interpolation/jet.h"

/// u = (x - centre) / half_width; -1 at the first abscissa of the data, 1 at the last.
struct ABSCISSA_SCALE {
    double centre = 0;
    double half_width = 1;  ///< 1 when all abscissae are the same

    double ToUnit(double x) const { return (x - centre) / half_width; }
};

struct SCALED_FIT {
    ABSCISSA_SCALE scale;
    std::vector<double> coefficients;  ///< of the basis functions of u, from the lowest
    double chi_square = 0;             ///< unit weights
    int dropped_count = 0;             ///< singular values below the threshold
    REACH reach;
};

inline constexpr int kDefaultFitOrder = 7;
inline constexpr int kMaxFitOrder = 128;

/// @returns order, or order left as it is for -1
/// @throws ERROR_ARGUMENT (logged as owner's) for another negative order or one above kMaxFitOrder
int CheckedFitOrder(int order, int current, const char* owner);

/// The order that point_count points can carry; logs reduce_text "old -> new" at WARNING when it is lower.
int ReducedFitOrder(int order, int point_count, const char* reduce_text);

/// @tparam BASIS  see basis_functions.h
/// Accuracy: the solution is refined once by fitting its own residuals, taken in extended precision; coefficients are
/// then as good as those of an extended solution, rounded (without it, the 9th order over 20 vectors loses 3e-8 m).
template <template <class> class BASIS>
SCALED_FIT FitScaled(const SUPPORT_POINTS& points, int order);

/// One line at WARNING that says how many were dropped and what to change; nothing when none was.
void WarnAboutDroppedValues(const SCALED_FIT& fit, const char* owner);
