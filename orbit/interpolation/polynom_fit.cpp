#include "orbit/interpolation/polynom_fit.h"

#include "lib/baselib/logging/logging.h"
#include "orbit/fit/basis_functions.h"

void POLYNOM_FIT_CORE::Create(const SUPPORT_POINTS& points) {
    CheckSupportPoints(points, "POLYNOM_FIT::Create", SORTED::EQUAL_ALLOWED);
    order_ = ReducedFitOrder(order_, points.Count(), "POLYFIT: reduce polynomial fit order ");
    fit_ = FitScaled<POLYNOM_FUNCTION>(points, order_);
    Log().Message(LOGGING_LEVEL::INFO, "POLYFIT: polynomial fit order = %d", order_);
    Log().Message(LOGGING_LEVEL::INFO, "POLYFIT: chi^2 = %.10g", fit_.chi_square);
    if (warn_about_dropped_) WarnAboutDroppedValues(fit_, "POLYFIT");
}

JET POLYNOM_FIT_CORE::At(double x) const {
    if (!fit_.reach.Holds(x)) RefuseQuery("POLYNOM_FIT", fit_.reach, x);
    const double u = fit_.scale.ToUnit(x);
    JET jet{};
    double half_second = 0;
    for (size_t i = fit_.coefficients.size(); i-- > 0;) {
        half_second = u * half_second + jet.first;
        jet.first = u * jet.first + jet.value;
        jet.value = u * jet.value + fit_.coefficients[i];
    }
    jet.first /= fit_.scale.half_width;
    jet.second = 2 * half_second / (fit_.scale.half_width * fit_.scale.half_width);
    return jet;
}

template class POLYNOM_FIT<float>;
template class POLYNOM_FIT<double>;
