#include "orbit/everett.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// C(p + k, 2 k + 1) as a function of p, with derivatives: the next k from the last one.
void NextCoefficient(JET& coefficient, double p, int k) {
    const double factor = p * p - static_cast<double>(k) * k;
    const double divisor = 2.0 * k * (2.0 * k + 1);
    coefficient = {coefficient.value * factor / divisor,
                   (coefficient.first * factor + 2 * p * coefficient.value) / divisor,
                   (coefficient.second * factor + 4 * p * coefficient.first + 2 * coefficient.value) / divisor};
}

}  // namespace

template <class T>
void EVERETT<T>::SetOrder(int order) {
    if (order != -1) order_ = order;
}

template <class T>
bool EVERETT<T>::IsEquidistant(const SUPPORT_POINTS& points) {
    if (points.Count() < 3) return true;
    const double first_step = points.x[1] - points.x[0];
    const double mean_step = (points.x.back() - points.x.front()) / (points.Count() - 1);
    const double tolerance = first_step * 1e-8;
    for (size_t i = 0; i + 1 < points.x.size(); ++i)
        if (std::fabs(points.x[i + 1] - points.x[i] - first_step) > tolerance) return false;
    return std::fabs(first_step - mean_step) <= tolerance;
}

template <class T>
void EVERETT<T>::Create(const ARRAY<POINT<T>>& points) {
    reach_ = REACH();
    if (points.Count() < 2) {
        Log().Message(LOGGING_LEVEL::ALARM, "EVERETT::Create: more than 1 value needed.");
        throw ERROR_ARGUMENT();
    }
    if (order_ % 2 != 0) {
        Log().Message(LOGGING_LEVEL::ALARM,
                      "EVERETT::Create: Everett interpolation only possible with even order, not for given order %d",
                      order_);
        throw ERROR_ARGUMENT();
    }
    if (order_ < 0 || order_ > kMaxOrder)
        RefuseArgument("EVERETT::Create", "the order %d is outside 0..%d", order_, kMaxOrder);
    points_ = CheckedSupportPoints(points, "EVERETT::Create", SORTED::STRICTLY);
    if (points_.Count() < order_ + 1)
        RefuseArgument("EVERETT::Create", "order %d needs at least %d support points, not %d", order_, order_ + 1,
                       points_.Count());
    if (!IsEquidistant(points_)) {
        Log() << LOGGING_LEVEL::ALARM << "EVERETT::Create: Everett interpolation only possible on equidistant grid.\n";
        throw ERROR_ARGUMENT();
    }
    step_ = (points_.x.back() - points_.x.front()) / (points_.Count() - 1);
    FillDifferences();
}

template <class T>
void EVERETT<T>::FillDifferences() {
    const int count = points_.Count();
    const int columns = order_ / 2 + 1;
    std::vector<double> column = points_.y;
    double magnitude = 0;
    differences_.assign(static_cast<size_t>(count + 1) * static_cast<size_t>(columns), 0.0);
    for (int k = 0; k < columns; ++k) {
        for (int i = 0; i <= count; ++i) {
            const double nearest = column[static_cast<size_t>(std::clamp(i, k, count - 1 - k))];
            differences_[static_cast<size_t>(i) * static_cast<size_t>(columns) + static_cast<size_t>(k)] = nearest;
            magnitude = std::max(magnitude, std::fabs(nearest));
        }
        const std::vector<double> last = column;
        for (int i = k + 1; i < count - 1 - k; ++i) {
            const auto at = static_cast<size_t>(i);
            column[at] = (last[at + 1] - last[at]) - (last[at] - last[at - 1]);
        }
    }
    const double half = (points_.x.back() - points_.x.front()) / 2;
    // In steps, p stays below count (1 + |x - centre| / half): hence half a step as the half width.
    reach_.Set(points_.x.front() + half, step_ / 2, order_ + 1, magnitude * columns);
    reach_.radius = std::max(reach_.radius, 2 * half);
}

template <class T>
void EVERETT<T>::LogForced(LINE_BUDGET& budget, LOGGING_LEVEL level, const char* text) const {
    const int number = budget.Next(kMaxLines);
    if (number == 0) return;
    Log() << level << text;
    if (number == kMaxLines) Log().Message(level, "EVERETT::GetXi: no further lines of this kind from this axis");
}

template <class T>
typename EVERETT<T>::CELL EVERETT<T>::GetXi(T x) const {
    const double r = (static_cast<double>(x) - points_.x.front()) / step_;
    const int lowest = order_ / 2;
    const int highest = points_.Count() - 1 - order_ / 2;
    const double cell = std::floor(r);
    int index = 0;
    if (cell < lowest) {
        index = lowest;
        LogForced(left_lines_, LOGGING_LEVEL::WARNING, "EVERETT::GetXi: Forced interpolation left hand side.\n");
    } else if (cell > highest) {
        index = highest;
        LogForced(right_lines_, LOGGING_LEVEL::WARNING, "EVERETT::GetXi: Forced interpolation right hand side.\n");
    } else {
        index = static_cast<int>(cell);
    }
    const double p = r - index;
    if (p < 0 || p > 1) {
        char text[120];
        std::snprintf(text, sizeof text, "EVERETT::GetXi: Extrapolation needed (r=%.10g p=%.10g q=%.10g)\n", r, p,
                      1 - p);
        LogForced(extrapolation_lines_, LOGGING_LEVEL::DEBUG, text);
    }
    return {index, p, 1 - p};
}

template <class T>
void EVERETT<T>::Evaluate(T x, T& value, T& first, T& second) const {
    if (!reach_.Holds(static_cast<double>(x))) RefuseQuery("EVERETT", reach_, static_cast<double>(x));
    const CELL cell = GetXi(x);
    const int columns = order_ / 2 + 1;
    const double* const left = &differences_[static_cast<size_t>(cell.index) * static_cast<size_t>(columns)];
    const double* const right = left + columns;
    JET of_p{cell.p, 1, 0};
    JET of_q{cell.q, 1, 0};
    JET sum{};
    for (int k = 0; k < columns; ++k) {
        if (k > 0) {
            NextCoefficient(of_p, cell.p, k);
            NextCoefficient(of_q, cell.q, k);
        }
        sum.value += of_q.value * left[k] + of_p.value * right[k];
        sum.first += of_p.first * right[k] - of_q.first * left[k];  // dq / dp = -1
        sum.second += of_p.second * right[k] + of_q.second * left[k];
    }
    Deliver({sum.value, sum.first / step_, sum.second / (step_ * step_)}, "EVERETT", value, first, second);
}

template class EVERETT<float>;
template class EVERETT<double>;
