/// \file polynom_fit.h
/// One least-squares polynomial over all support points, in the monomials of u = (x - centre) / half width, -1..1 over
/// the data.
/// Accuracy: exact for polynomials up to the order; as accurate as a QR solution in long double up to order 12, beyond
/// which the fixed singular value threshold begins to drop directions (a WARNING says so).

#pragma once

#include "orbit/interpolation.h"
#include "orbit/scaled_fit.h"

template <class T>
class POLYNOM_FIT final : public INTERPOLATION<T, POINT<T>> {
  public:
    using INTERPOLATION<T, POINT<T>>::Create;
    /// An order that is not smaller than the number of points is lowered to that number minus 1 and stays so.
    void Create(const ARRAY<POINT<T>>& points) override;

    /// From 0. @throws ERROR_ARGUMENT outside 0 .. kMaxFitOrder
    void SetOrder(int order) override;
    int Order() const { return order_; }

    void Evaluate(T x, T& value, T& first, T& second) const override;

    /// The coefficients c0 .. c(order) of the powers of u = (x - Scale().centre) / Scale().half_width. Index from 0.
    ARRAY<T> GetCoeffs() const override;
    const ABSCISSA_SCALE& Scale() const { return fit_.scale; }

    /// Whether Create says how many singular values were dropped (default); a local interpolation says it once for all
    /// its pieces.
    void WarnAboutDropped(bool warn) { warn_about_dropped_ = warn; }
    const SCALED_FIT& Fit() const { return fit_; }

  private:
    int order_ = kDefaultFitOrder;
    bool warn_about_dropped_ = true;
    SCALED_FIT fit_;
};

extern template class POLYNOM_FIT<float>;
extern template class POLYNOM_FIT<double>;
