/// \file polynom.h
/// The polynomial through all support points.
/// Accuracy: exact up to degree count - 1. Points at equal distances: use it in the middle of the data only; towards
/// the ends the error of the data is amplified up to 2^count times (Runge). Method: Newton's form with the nodes in
/// Leja order (L. Reichel, "Newton interpolation at Leja points", BIT 30, 1990). Of an orbit of 84 vectors at 10 s, 200
/// s off the middle, it keeps 5e-8 m where the order of the abscissae loses 30 m.

#pragma once

#include <vector>

#include "orbit/interpolation.h"
#include "orbit/newton_form.h"

template <class T>
class POLYNOM final : public INTERPOLATION<T, POINT<T>> {
  public:
    /// Beyond, O(count^2) set-up and the growth towards the ends serve nobody.
    static constexpr int kMaxPointCount = 256;

    using INTERPOLATION<T, POINT<T>>::Create;
    /// @throws ERROR_ARGUMENT also for more than kMaxPointCount points
    void Create(const ARRAY<POINT<T>>& points) override;

    /// At a support point the value is its ordinate, bit for bit.
    void Evaluate(T x, T& value, T& first, T& second) const override;

    /// The divided differences c0 .. c(count - 1) of p(x) = c0 + (x - x0) (c1 + (x - x1) (c2 + ...)), the points in
    /// their given order, x as given. Index from 0. A coefficient that T cannot hold becomes 0 or the largest value.
    ARRAY<T> GetCoeffs() const override;

  private:
    SUPPORT_POINTS points_;
    std::vector<NEWTON_TERM> terms_;  ///< in Leja order
    double scale_ = 1;
    REACH reach_;
};

extern template class POLYNOM<float>;
extern template class POLYNOM<double>;
