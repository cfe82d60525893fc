/// \file fitted_core.h
/// What the two least-squares interpolators have in common: the order, the fit, and whether dropped values are told.

#pragma once

#include "orbit/interpolation/interpolation.h"
#include "orbit/interpolation/scaled_fit.h"

/// Create() lowers an order that is not smaller than the number of points to that number minus 1, and it stays so.
class FITTED_CORE : public INTERPOLATOR {
  public:
    /// From 0. @throws ERROR_ARGUMENT outside 0 .. kMaxFitOrder
    void SetOrder(int order) override { order_ = CheckedFitOrder(order, order_, Name()); }
    [[nodiscard]] int Order() const override { return order_; }
    void WarnAboutDropped(bool warn) override { warn_about_dropped_ = warn; }
    [[nodiscard]] std::vector<long double> Coefficients() const override {
        return {fit_.coefficients.begin(), fit_.coefficients.end()};
    }

  protected:
    int order_ = kDefaultFitOrder;
    bool warn_about_dropped_ = true;
    SCALED_FIT fit_;
};
