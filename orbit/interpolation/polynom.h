/// \file polynom.h
/// The polynomial through all support points.
/// Accuracy: exact up to degree count - 1. Points at equal distances: use it in the middle of the data only; towards
/// the ends the error of the data is amplified up to 2^count times (Runge). Method: Newton's form with the nodes in
/// Leja order (L. Reichel, "Newton interpolation at Leja points", BIT 30, 1990). Of an orbit of 84 vectors at 10 s, 200
/// s off the middle, it keeps 5e-8 m where the order of the abscissae loses 30 m.

#pragma once

#include "orbit/interpolation/interpolation.h"
#include "orbit/interpolation/newton_form.h"

class POLYNOM_CORE final : public INTERPOLATOR {
  public:
    /// Beyond, O(count^2) set-up and the growth towards the ends serve nobody.
    static constexpr int kMaxPointCount = 256;

    [[nodiscard]] const char* Name() const override { return "POLYNOM"; }
    /// @throws ERROR_ARGUMENT also for more than kMaxPointCount points
    void Create(const SUPPORT_POINTS& points) override;
    /// At a support point the value is its ordinate, bit for bit.
    [[nodiscard]] JET At(double x) const override;
    /// The divided differences c0 .. c(count - 1) of p(x) = c0 + (x - x0) (c1 + (x - x1) (c2 + ...)), the points in
    /// their given order, x as given.
    [[nodiscard]] std::vector<long double> Coefficients() const override;

  private:
    std::vector<double> x_, y_;       ///< the support points
    std::vector<NEWTON_TERM> terms_;  ///< in Leja order
    double scale_ = 1;
    REACH reach_;
};

template <class T>
class POLYNOM final : public INTERPOLATION_BY<T, POINT<T>, POLYNOM_CORE> {};

extern template class POLYNOM<float>;
extern template class POLYNOM<double>;
