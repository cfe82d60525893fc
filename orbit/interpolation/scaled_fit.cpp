#include "orbit/interpolation/scaled_fit.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"
#include "orbit/fit/svdfit.h"
#include "orbit/interpolation/extended_real.h"

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

namespace {

template <template <class> class BASIS>
std::vector<double> Residuals(const std::vector<double>& unit, std::span<const double> y,
                              const std::vector<double>& coefficients) {
    const int count = static_cast<int>(coefficients.size());
    std::vector<EXTENDED_REAL> basis(coefficients.size() + 1);  // addressed from 1
    std::vector<double> residuals;
    for (size_t point = 0; point < unit.size(); ++point) {
        BASIS<EXTENDED_REAL>::Fill(unit[point], basis.data(), count);
        EXTENDED_REAL residual = y[point];
        for (size_t j = 0; j < coefficients.size(); ++j) residual -= coefficients[j] * basis[j + 1];
        residuals.push_back(static_cast<double>(residual));
    }
    return residuals;
}

ABSCISSA_SCALE ScaleOf(std::span<const double> x) {
    const double width = x.back() - x.front();
    return {x.front() + width / 2, width > 0 ? width / 2 : 1};
}

}  // namespace

template <template <class> class BASIS>
SCALED_FIT FitScaled(const SUPPORT_POINTS& points, int order) {
    SCALED_FIT fit;
    fit.scale = ScaleOf(points.x);
    fit.coefficients.resize(static_cast<size_t>(order) + 1);
    std::vector<double> unit;
    for (const double x : points.x) unit.push_back(fit.scale.ToUnit(x));
    const std::vector<double> sigma(unit.size(), 1.0);

    SVDFIT<double, BASIS<double>> solver;
    solver.Fit(unit, points.y, sigma, fit.coefficients);
    fit.dropped_count = solver.DroppedCount();
    std::vector<double> correction(fit.coefficients.size());
    solver.Fit(unit, Residuals<BASIS>(unit, points.y, fit.coefficients), sigma, correction);
    double magnitude = 0;
    for (size_t i = 0; i < correction.size(); ++i) magnitude += std::fabs(fit.coefficients[i] += correction[i]);
    for (const double residual : Residuals<BASIS>(unit, points.y, fit.coefficients))
        fit.chi_square += residual * residual;

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

template SCALED_FIT FitScaled<POLYNOM_FUNCTION>(const SUPPORT_POINTS&, int);
template SCALED_FIT FitScaled<CHEBY_POLY_FUNCTION>(const SUPPORT_POINTS&, int);
