#include "orbit/scaled_fit.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"
#include "orbit/svdfit.h"

int CheckedFitOrder(int order, int current, const char* owner) {
    if (order == -1) return current;
    if (order < 0 || order > kMaxFitOrder)
        RefuseArgument(owner, "the fit order %d is outside 0..%d", order, kMaxFitOrder);
    return order;
}

int ReducedFitOrder(int order, int point_count, const char* reduce_text) {
    const int reduced = std::min(order, point_count - 1);
    if (reduced < order) Log().Message(LOGGING_LEVEL::WARNING, "%s%d -> %d", reduce_text, order, reduced);
    return reduced;
}

template <class F>
SCALED_FIT FitScaled(const SUPPORT_POINTS& points, int order) {
    SCALED_FIT fit;
    const double first = points.x.front();
    const double last = points.x.back();
    fit.scale.centre = first + (last - first) / 2;
    if (last > first) fit.scale.half_width = (last - first) / 2;
    fit.coefficients.resize(static_cast<size_t>(order) + 1);
    std::vector<double> unit;
    for (const double x : points.x) unit.push_back(fit.scale.ToUnit(x));
    const std::vector<double> sigma(unit.size(), 1.0);

    SVDFIT<double, F> solver;
    fit.chi_square = solver.Fit(unit, points.y, sigma, fit.coefficients);
    fit.dropped_count = solver.DroppedCount();
    double magnitude = 0;
    for (const double coefficient : fit.coefficients) magnitude += std::fabs(coefficient);
    // |T_k(u)| < (2 |u|)^k outside the data, hence half of the half width.
    fit.reach.Set(fit.scale.centre, fit.scale.half_width / 2, order, magnitude);
    fit.reach.radius = std::max(fit.reach.radius, 2 * fit.scale.half_width);
    return fit;
}

void WarnAboutDroppedValues(const SCALED_FIT& fit, const char* owner) {
    if (fit.dropped_count == 0) return;
    Log().Message(LOGGING_LEVEL::WARNING,
                  "%s: %d of %zu singular values lie below 1e-5 of the largest and were dropped, so the fit is poorer "
                  "than its order promises: choose a lower order, chebyshev, or a local interpolation",
                  owner, fit.dropped_count, fit.coefficients.size());
}

template SCALED_FIT FitScaled<POLYNOM_FUNCTION<double>>(const SUPPORT_POINTS&, int);
template SCALED_FIT FitScaled<CHEBY_POLY_FUNCTION<double>>(const SUPPORT_POINTS&, int);
