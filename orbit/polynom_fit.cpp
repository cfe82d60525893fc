#include "orbit/polynom_fit.h"

#include "lib/baselib/logging/logging.h"
#include "orbit/basis_functions.h"

template <class T>
void POLYNOM_FIT<T>::SetOrder(int order) {
    order_ = CheckedFitOrder(order, order_, "POLYNOM_FIT");
}

template <class T>
void POLYNOM_FIT<T>::Create(const ARRAY<POINT<T>>& points) {
    const SUPPORT_POINTS checked = CheckedSupportPoints(points, "POLYNOM_FIT::Create", SORTED::EQUAL_ALLOWED);
    order_ = ReducedFitOrder(order_, checked.Count(), "POLYFIT: reduce polynomial fit order ");
    fit_ = FitScaled<POLYNOM_FUNCTION>(checked, order_);
    Log().Message(LOGGING_LEVEL::INFO, "POLYFIT: polynomial fit order = %d", order_);
    Log().Message(LOGGING_LEVEL::INFO, "POLYFIT: chi^2 = %.10g", fit_.chi_square);
    if (warn_about_dropped_) WarnAboutDroppedValues(fit_, "POLYFIT");
}

template <class T>
void POLYNOM_FIT<T>::Evaluate(T x, T& value, T& first, T& second) const {
    const double at = static_cast<double>(x);
    if (!fit_.reach.Holds(at)) RefuseQuery("POLYNOM_FIT", fit_.reach, at);
    const double u = fit_.scale.ToUnit(at);
    JET jet{};
    double half_second = 0;
    for (size_t i = fit_.coefficients.size(); i-- > 0;) {
        half_second = u * half_second + jet.first;
        jet.first = u * jet.first + jet.value;
        jet.value = u * jet.value + fit_.coefficients[i];
    }
    jet.first /= fit_.scale.half_width;
    jet.second = 2 * half_second / (fit_.scale.half_width * fit_.scale.half_width);
    Deliver(jet, "POLYNOM_FIT", value, first, second);
}

template <class T>
ARRAY<T> POLYNOM_FIT<T>::GetCoeffs() const {
    ARRAY<T> coefficients(0, static_cast<int>(fit_.coefficients.size()));
    for (int i = 0; i < coefficients.Count(); ++i)
        coefficients[i] = NarrowResult<T>(fit_.coefficients[static_cast<size_t>(i)], "POLYNOM_FIT::GetCoeffs");
    return coefficients;
}

template class POLYNOM_FIT<float>;
template class POLYNOM_FIT<double>;
