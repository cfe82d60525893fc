/// \file cheby_poly.h
/// One least-squares fit over all support points in Chebyshev polynomials of u = (x - centre) / half width, -1..1 over
/// the data.
/// Accuracy: as POLYNOM_FIT, but without dropped singular values also at high orders, as long as the order stays below
/// about half the number of points (first drop: order 33 of 40 equidistant points, 50 of 84).

#pragma once

#include "orbit/interpolation.h"
#include "orbit/scaled_fit.h"

template <class T>
class CHEBY_POLY final : public INTERPOLATION<T, POINT<T>> {
  public:
    CHEBY_POLY() = default;
    CHEBY_POLY(const CHEBY_POLY&) = default;
    CHEBY_POLY(CHEBY_POLY&&) noexcept = default;
    /// @throws ERROR_NO_MEMORY (logged first); the object then keeps its fit
    CHEBY_POLY& operator=(const CHEBY_POLY& other);
    CHEBY_POLY& operator=(CHEBY_POLY&&) noexcept = default;

    using INTERPOLATION<T, POINT<T>>::Create;
    /// An order that is not smaller than the number of points is lowered to that number minus 1 and stays so.
    void Create(const ARRAY<POINT<T>>& points) override;

    /// From 0. @throws ERROR_ARGUMENT outside 0 .. kMaxFitOrder
    void SetOrder(int order) override;
    int Order() const { return order_; }

    void Evaluate(T x, T& value, T& first, T& second) const override;

    /// The coefficients c0 .. c(order) of T0(u) .. T(order)(u), u = MapAbscissa(x). Index from 0.
    ARRAY<T> GetCoeffs() const override;
    /// The Chebyshev variable of x.
    T MapAbscissa(T x) const;

    /// Whether Create says how many singular values were dropped (default); a local interpolation says it once for all
    /// its pieces.
    void WarnAboutDropped(bool warn) { warn_about_dropped_ = warn; }
    const SCALED_FIT& Fit() const { return fit_; }

  private:
    int order_ = kDefaultFitOrder;
    bool warn_about_dropped_ = true;
    SCALED_FIT fit_;
};

extern template class CHEBY_POLY<float>;
extern template class CHEBY_POLY<double>;
