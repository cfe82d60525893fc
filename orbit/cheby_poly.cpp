#include "orbit/cheby_poly.h"

#include <new>
#include <utility>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/basis_functions.h"

template <class T>
CHEBY_POLY<T>& CHEBY_POLY<T>::operator=(const CHEBY_POLY& other) {
    try {
        CHEBY_POLY copy(other);
        *this = std::move(copy);
    } catch (const std::bad_alloc&) {
        Log().Message(LOGGING_LEVEL::ALARM, "CHEBY_POLY::operator =: not enough memory.");
        throw ERROR_NO_MEMORY();
    }
    return *this;
}

template <class T>
void CHEBY_POLY<T>::SetOrder(int order) {
    order_ = CheckedFitOrder(order, order_, "CHEBY_POLY");
}

template <class T>
void CHEBY_POLY<T>::Create(const ARRAY<POINT<T>>& points) {
    try {
        const SUPPORT_POINTS checked = CheckedSupportPoints(points, "CHEBY_POLY::Create", SORTED::EQUAL_ALLOWED);
        order_ = ReducedFitOrder(order_, checked.Count(), "CHEBY_POLY::Create: reduce polynomial fit order ");
        fit_ = FitScaled<CHEBY_POLY_FUNCTION>(checked, order_);
    } catch (const std::bad_alloc&) {
        Log().Message(LOGGING_LEVEL::ALARM, "CHEBY_POLY::Create: not enough memory.");
        throw ERROR_NO_MEMORY();
    }
    Log().Message(LOGGING_LEVEL::INFO, "CHEBY_POLY::Create: chi^2 = %.10g", fit_.chi_square);
    if (warn_about_dropped_) WarnAboutDroppedValues(fit_, "CHEBY_POLY::Create");
}

/// Clenshaw's recurrence and its derivatives:
///   b(k) = c(k) + 2 u b(k+1) - b(k+2),  value = c(0) + u b(1) - b(2);
/// b' and b'' follow by differentiating both lines.
template <class T>
void CHEBY_POLY<T>::Evaluate(T x, T& value, T& first, T& second) const {
    const double at = static_cast<double>(x);
    if (!fit_.reach.Holds(at)) RefuseQuery("CHEBY_POLY", fit_.reach, at);
    const double u = fit_.scale.ToUnit(at);
    JET b1{};
    JET b2{};
    for (size_t k = fit_.coefficients.size(); k-- > 1;) {
        const JET b{fit_.coefficients[k] + 2 * u * b1.value - b2.value, 2 * b1.value + 2 * u * b1.first - b2.first,
                    4 * b1.first + 2 * u * b1.second - b2.second};
        b2 = b1;
        b1 = b;
    }
    const double half_width = fit_.scale.half_width;
    const JET jet{fit_.coefficients[0] + u * b1.value - b2.value, (b1.value + u * b1.first - b2.first) / half_width,
                  (2 * b1.first + u * b1.second - b2.second) / (half_width * half_width)};
    Deliver(jet, "CHEBY_POLY", value, first, second);
}

template <class T>
ARRAY<T> CHEBY_POLY<T>::GetCoeffs() const {
    ARRAY<T> coefficients(0, static_cast<int>(fit_.coefficients.size()));
    for (int i = 0; i < coefficients.Count(); ++i)
        coefficients[i] = NarrowResult<T>(fit_.coefficients[static_cast<size_t>(i)], "CHEBY_POLY::GetCoeffs");
    return coefficients;
}

template <class T>
T CHEBY_POLY<T>::MapAbscissa(T x) const {
    return NarrowResult<T>(fit_.scale.ToUnit(static_cast<double>(x)), "CHEBY_POLY::MapAbscissa");
}

template class CHEBY_POLY<float>;
template class CHEBY_POLY<double>;
