/// \file polynom_fit.h
/// One least-squares polynomial over all support points, in the monomials of u = (x - centre) / half width, -1..1 over
/// the data.
/// Accuracy: exact for polynomials up to the order; as accurate as a QR solution in long double up to order 12, beyond
/// which the fixed singular value threshold begins to drop directions (a WARNING says so).

#pragma once

#include "orbit/interpolation/interpolation.h"
#include "orbit/interpolation/scaled_fit.h"

class POLYNOM_FIT_CORE final : public INTERPOLATOR {
  public:
    [[nodiscard]] const char* Name() const override { return "POLYNOM_FIT"; }
    /// From 0. @throws ERROR_ARGUMENT outside 0 .. kMaxFitOrder
    void SetOrder(int order) override;
    [[nodiscard]] int Order() const override { return order_; }
    void WarnAboutDropped(bool warn) override { warn_about_dropped_ = warn; }

    /// An order that is not smaller than the number of points is lowered to that number minus 1 and stays so.
    void Create(const SUPPORT_POINTS& points) override;
    [[nodiscard]] JET At(double x) const override;
    /// c0 .. c(order) of the powers of u.
    [[nodiscard]] std::vector<long double> Coefficients() const override;

  private:
    int order_ = kDefaultFitOrder;
    bool warn_about_dropped_ = true;
    SCALED_FIT fit_;
};

template <class T>
class POLYNOM_FIT final : public INTERPOLATION_BY<T, POINT<T>, POLYNOM_FIT_CORE> {};

extern template class POLYNOM_FIT<float>;
extern template class POLYNOM_FIT<double>;
