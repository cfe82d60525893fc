/// \file everett.h
/// Everett's central-difference formula on an equidistant grid:
///   f = sum over k = 0 .. order / 2 of C(q + k, 2 k + 1) d(i, 2k) + C(p + k, 2 k + 1) d(i + 1, 2k),
/// i the cell's left point, p = (x - x(i)) / h, q = 1 - p, d(i, 2k) the central difference of order 2k at point i.
/// Accuracy: exact up to degree order + 1 in cells with order / 2 points on either side of them. A central difference
/// that the grid does not reach takes the nearest computed one of its order; the results within order / 2 steps of the
/// ends are poorer by that, and order 0 has no slope from the last point on.
/// Threads: queries are safe; their lines in the log are limited to kMaxLines of each kind per interpolator.

#pragma once

#include <atomic>
#include <vector>

#include "lib/baselib/logging/logging.h"
#include "orbit/interpolation/interpolation.h"

/// Lets a line be logged a limited number of times: a scene near the end of its orbit data asks millions of times.
class LINE_BUDGET {
  public:
    LINE_BUDGET() = default;
    /// A copy starts anew.
    LINE_BUDGET(const LINE_BUDGET&) {}
    LINE_BUDGET& operator=(const LINE_BUDGET&) { return *this; }

    /// 1, 2, ... up to limit, then 0.
    int Next(int limit) {
        if (used_.load(std::memory_order_relaxed) >= limit) return 0;
        const int number = used_.fetch_add(1, std::memory_order_relaxed) + 1;
        return number <= limit ? number : 0;
    }

  private:
    std::atomic<int> used_{0};
};

class EVERETT_CORE final : public INTERPOLATOR {
  public:
    static constexpr int kDefaultOrder = 8;
    static constexpr int kMaxOrder = 128;
    static constexpr int kMaxLines = 10;

    /// Where x lies: the cell's left point, counted from the first one, and the place in the cell.
    struct CELL {
        int index;
        double p;  ///< 0..1 inside the cell; outside that, the cell's polynomial is extrapolated
        double q;  ///< 1 - p
    };

    [[nodiscard]] const char* Name() const override { return "EVERETT"; }
    /// Even, from 0; checked by Create.
    void SetOrder(int order) override;
    [[nodiscard]] int Order() const override { return order_; }
    /// @throws ERROR_ARGUMENT for fewer than two points, an odd order, fewer than order + 1 points, a grid that is not
    /// equidistant
    void Create(const SUPPORT_POINTS& points) override;
    [[nodiscard]] JET At(double x) const override;

    /// Every step differs from the first one by at most 1e-8 of it, and so does the first one from the mean step.
    /// Fewer than three abscissae always pass.
    [[nodiscard]] static bool IsEquidistant(std::span<const double> x);

    /// The cell for x. A cell closer than order / 2 points to either end is replaced by the outermost one that is not
    /// (WARNING); p or q outside 0..1 is told at DEBUG.
    [[nodiscard]] CELL GetXi(double x) const;

  private:
    void CheckOrder(int point_count) const;
    void FillDifferences(std::vector<double> column);
    void LogForced(LINE_BUDGET& budget, LOGGING_LEVEL level, const char* text) const;

    int order_ = kDefaultOrder;
    int count_ = 0;  ///< of the points
    double first_x_ = 0;
    double step_ = 1;
    std::vector<double> differences_;  ///< per point, and once more behind the last: values, d2, d4, ... d(order)
    REACH reach_;
    mutable LINE_BUDGET left_lines_, right_lines_, extrapolation_lines_;
};

template <class T>
class EVERETT final : public INTERPOLATION_BY<T, POINT<T>, EVERETT_CORE> {
  public:
    using CELL = EVERETT_CORE::CELL;

    /// Whether the points are those of an equidistant grid, to 1e-8 of its first step.
    [[nodiscard]] virtual bool IsEquidistant(const ARRAY<POINT<T>>& points) const {
        std::vector<double> x;
        for (const POINT<T>& point : points) x.push_back(point.x);
        return EVERETT_CORE::IsEquidistant(x);
    }
    [[nodiscard]] virtual CELL GetXi(T x) const { return this->Core().GetXi(x); }
};

extern template class EVERETT<float>;
extern template class EVERETT<double>;
