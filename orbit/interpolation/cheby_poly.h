/// \file cheby_poly.h
/// One least-squares fit over all support points in Chebyshev polynomials of u = (x - centre) / half width, -1..1 over
/// the data.
/// Accuracy: as POLYNOM_FIT, but without dropped singular values also at high orders, as long as the order stays below
/// about half the number of points (first drop: order 33 of 40 equidistant points, 50 of 84).

#pragma once

#include "orbit/interpolation/fitted_core.h"
#include "orbit/interpolation/interpolation.h"

/// Coefficients(): c0 .. c(order) of T0(u) .. T(order)(u).
class CHEBY_POLY_CORE final : public FITTED_CORE {
  public:
    CHEBY_POLY_CORE() = default;
    CHEBY_POLY_CORE(const CHEBY_POLY_CORE&) = default;
    CHEBY_POLY_CORE(CHEBY_POLY_CORE&&) noexcept = default;
    /// @throws ERROR_NO_MEMORY (logged first); the object then keeps its fit
    CHEBY_POLY_CORE& operator=(const CHEBY_POLY_CORE& other);
    CHEBY_POLY_CORE& operator=(CHEBY_POLY_CORE&&) noexcept = default;

    [[nodiscard]] const char* Name() const override { return "CHEBY_POLY"; }
    void Create(const SUPPORT_POINTS& points) override;
    [[nodiscard]] JET At(double x) const override;

    /// The Chebyshev variable u of x.
    [[nodiscard]] double MapAbscissa(double x) const { return fit_.scale.ToUnit(x); }
};

template <class T>
class CHEBY_POLY final : public INTERPOLATION_BY<T, POINT<T>, CHEBY_POLY_CORE> {
  public:
    /// The Chebyshev variable of x: -1 at the first support point, 1 at the last.
    [[nodiscard]] virtual T MapAbscissa(T x) const { return static_cast<T>(this->Core().MapAbscissa(x)); }
};

extern template class CHEBY_POLY<float>;
extern template class CHEBY_POLY<double>;
