/// \file polynom_fit.h
/// One least-squares polynomial over all support points, in the monomials of u = (x - centre) / half width, -1..1 over
/// the data.
/// Accuracy: exact for polynomials up to the order; as accurate as a QR solution in long double up to order 12, beyond
/// which the fixed singular value threshold begins to drop directions (a WARNING says so).

#pragma once

#include "orbit/interpolation/fitted_core.h"
#include "orbit/interpolation/interpolation.h"

/// Coefficients(): c0 .. c(order) of the powers of u.
class POLYNOM_FIT_CORE final : public FITTED_CORE {
  public:
    [[nodiscard]] const char* Name() const override { return "POLYNOM_FIT"; }
    void Create(const SUPPORT_POINTS& points) override;
    [[nodiscard]] JET At(double x) const override;
};

template <class T>
class POLYNOM_FIT final : public INTERPOLATION_BY<T, POINT<T>, POLYNOM_FIT_CORE> {};

extern template class POLYNOM_FIT<float>;
extern template class POLYNOM_FIT<double>;
