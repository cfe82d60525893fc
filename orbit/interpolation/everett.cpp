#include "orbit/interpolation/everett.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
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

void EVERETT_CORE::SetOrder(int order) {
    if (order != -1) order_ = order;
}

bool EVERETT_CORE::IsEquidistant(std::span<const double> x) {
    if (x.size() < 3) return true;
    const double first_step = x[1] - x[0];
    const double mean_step = (x.back() - x.front()) / static_cast<double>(x.size() - 1);
    const double tolerance = first_step * 1e-8;
    for (size_t i = 0; i + 1 < x.size(); ++i)
        if (std::fabs(x[i + 1] - x[i] - first_step) > tolerance) return false;
    return std::fabs(first_step - mean_step) <= tolerance;
}

void EVERETT_CORE::CheckOrder(int point_count) const {
    if (point_count < 2) {
        LogAndThrow<ERROR_ARGUMENT>("EVERETT::Create: more than 1 value needed.");
    }
    if (order_ % 2 != 0) {
        LogAndThrow<ERROR_ARGUMENT>(
            "EVERETT::Create: Everett interpolation only possible with even order, not for given order %d", order_);
    }
    if (order_ < 0 || order_ > kMaxOrder)
        RefuseArgument("EVERETT::Create", "the order %d is outside 0..%d", order_, kMaxOrder);
}

void EVERETT_CORE::Create(const SUPPORT_POINTS& points) {
    reach_ = REACH();
    CheckOrder(points.Count());
    CheckSupportPoints(points, "EVERETT::Create", SORTED::STRICTLY);
    count_ = points.Count();
    if (count_ < order_ + 1)
        RefuseArgument("EVERETT::Create", "order %d needs at least %d support points, not %d", order_, order_ + 1,
                       count_);
    if (!IsEquidistant(points.x)) {
        Log() << LOGGING_LEVEL::ALARM << "EVERETT::Create: Everett interpolation only possible on equidistant grid.\n";
        throw ERROR_ARGUMENT();
    }
    first_x_ = points.x.front();
    step_ = (points.x.back() - first_x_) / (count_ - 1);
    FillDifferences({points.y.begin(), points.y.end()});
    double magnitude = 0;
    for (const double difference : differences_) magnitude = std::max(magnitude, std::fabs(difference));
    const double half = (points.x.back() - first_x_) / 2;
    // In steps, p stays below count (1 + |x - centre| / half): hence half a step as the half width.
    const int terms = order_ / 2 + 1;
    reach_.Set(first_x_ + half, step_ / 2, order_ + 1, magnitude * terms);
    reach_.radius = std::max(reach_.radius, 2 * half);
}

/// @param column  the values
void EVERETT_CORE::FillDifferences(std::vector<double> column) {
    const int columns = order_ / 2 + 1;
    differences_.assign(static_cast<size_t>(count_ + 1) * static_cast<size_t>(columns), 0.0);
    for (int k = 0; k < columns; ++k) {
        for (int i = 0; i <= count_; ++i) {
            differences_[static_cast<size_t>(i) * static_cast<size_t>(columns) + static_cast<size_t>(k)] =
                column[static_cast<size_t>(std::clamp(i, k, count_ - 1 - k))];
        }
        const std::vector<double> last = column;
        for (int i = k + 1; i < count_ - 1 - k; ++i) {
            const auto at = static_cast<size_t>(i);
            column[at] = (last[at + 1] - last[at]) - (last[at] - last[at - 1]);
        }
    }
}

void EVERETT_CORE::LogForced(LINE_BUDGET& budget, LOGGING_LEVEL level, const char* text) const {
    const int number = budget.Next(kMaxLines);
    if (number == 0) return;
    Log() << level << text;
    if (number == kMaxLines) Log().Message(level, "EVERETT::GetXi: no further lines of this kind from this axis");
}

EVERETT_CORE::CELL EVERETT_CORE::GetXi(double x) const {
    const double r = (x - first_x_) / step_;
    const int lowest = order_ / 2;
    const int highest = count_ - 1 - order_ / 2;
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

JET EVERETT_CORE::At(double x) const {
    if (!reach_.Holds(x)) RefuseQuery("EVERETT", reach_, x);
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
    return {sum.value, sum.first / step_, sum.second / (step_ * step_)};
}

template class EVERETT<float>;
template class EVERETT<double>;
