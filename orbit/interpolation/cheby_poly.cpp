#include "orbit/interpolation/cheby_poly.h"

#include <new>
#include <utility>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/fit/basis_functions.h"

CHEBY_POLY_CORE& CHEBY_POLY_CORE::operator=(const CHEBY_POLY_CORE& other) {
    try {
        CHEBY_POLY_CORE copy(other);
        *this = std::move(copy);
    } catch (const std::bad_alloc&) {
        LogAndThrow<ERROR_NO_MEMORY>("CHEBY_POLY::operator =: not enough memory.");
    }
    return *this;
}

void CHEBY_POLY_CORE::Create(const SUPPORT_POINTS& points) {
    try {
        CheckSupportPoints(points, "CHEBY_POLY::Create", SORTED::EQUAL_ALLOWED);
        order_ = ReducedFitOrder(order_, points.Count(), "CHEBY_POLY::Create: reduce polynomial fit order ");
        fit_ = FitScaled<CHEBY_POLY_FUNCTION>(points, order_);
    } catch (const std::bad_alloc&) {
        LogAndThrow<ERROR_NO_MEMORY>("CHEBY_POLY::Create: not enough memory.");
    }
    Log().Message(LOGGING_LEVEL::INFO, "CHEBY_POLY::Create: chi^2 = %.10g", fit_.chi_square);
    if (warn_about_dropped_) WarnAboutDroppedValues(fit_, "CHEBY_POLY::Create");
}

/// Clenshaw's recurrence and its derivatives:
///   b(k) = c(k) + 2 u b(k+1) - b(k+2),  value = c(0) + u b(1) - b(2);
/// b' and b'' follow by differentiating both lines.
JET CHEBY_POLY_CORE::At(double x) const {
    if (!fit_.reach.Holds(x)) RefuseQuery("CHEBY_POLY", fit_.reach, x);
    const double u = fit_.scale.ToUnit(x);
    JET b1{};
    JET b2{};
    for (size_t k = fit_.coefficients.size(); k-- > 1;) {
        const JET b{fit_.coefficients[k] + 2 * u * b1.value - b2.value, 2 * b1.value + 2 * u * b1.first - b2.first,
                    4 * b1.first + 2 * u * b1.second - b2.second};
        b2 = b1;
        b1 = b;
    }
    const double half_width = fit_.scale.half_width;
    return {fit_.coefficients[0] + u * b1.value - b2.value, (b1.value + u * b1.first - b2.first) / half_width,
            (2 * b1.first + u * b1.second - b2.second) / (half_width * half_width)};
}

template class CHEBY_POLY<float>;
template class CHEBY_POLY<double>;
