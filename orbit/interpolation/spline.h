/// \file spline.h
/// Natural cubic spline through all support points: second derivative 0 at both ends.
/// Accuracy: in the middle of the data of order h^4 in value, h^2 in second derivative; the condition at the ends costs
/// h^2 near them, fading by a factor of about 4 per point inwards.

#pragma once

#include "orbit/interpolation/interpolation.h"

class SPLINE_CORE final : public INTERPOLATOR {
  public:
    /// Up to this many interior points the continuity system is solved as a full matrix; beyond, where the matrix would
    /// take seconds per axis and soon gigabytes, as the tridiagonal system that it is.
    static constexpr int kMaxFullSystem = 200;

    [[nodiscard]] const char* Name() const override { return "SPLINE"; }
    /// @throws ERROR_ARGUMENT also for fewer than two points
    void Create(const SUPPORT_POINTS& points) override;
    [[nodiscard]] JET At(double x) const override;
    /// A spline has no polynomial coefficients: logs a WARNING and returns nothing.
    [[nodiscard]] std::vector<long double> Coefficients() const override;

  private:
    /// a + b d + c d^2 + e d^3 with d = x - left point of the interval
    struct CUBIC {
        double a, b, c, e;
    };

    void SetReach();

    std::vector<double> x_;
    std::vector<CUBIC> cubics_;  ///< one per interval
    REACH reach_;
};

template <class T>
class SPLINE final : public INTERPOLATION_BY<T, POINT<T>, SPLINE_CORE> {};

extern template class SPLINE<float>;
extern template class SPLINE<double>;
