#include "orbit/interpolation/polynom.h"

#include <algorithm>
#include <cmath>

namespace {

/// Begins with the point farthest from the middle; each next one has the greatest product of distances to those chosen.
/// Logarithms, since the products of many distances leave the range.
std::vector<size_t> LejaOrder(const std::vector<double>& x, double scale) {
    const double middle = (x.front() + x.back()) / 2;
    std::vector<double> score;
    score.reserve(x.size());
    for (const double node : x) score.push_back(std::fabs(node - middle));
    std::vector<size_t> order;
    std::vector<bool> chosen(x.size(), false);
    while (order.size() < x.size()) {
        size_t best = x.size();
        for (size_t i = 0; i < x.size(); ++i)
            if (!chosen[i] && (best == x.size() || score[i] > score[best])) best = i;
        chosen[best] = true;
        if (order.empty()) std::fill(score.begin(), score.end(), 0.0);
        for (size_t i = 0; i < x.size(); ++i)
            if (!chosen[i]) score[i] += std::log(std::fabs(x[i] - x[best]) * scale);
        order.push_back(best);
    }
    return order;
}

}  // namespace

void POLYNOM_CORE::Create(const SUPPORT_POINTS& points) {
    reach_ = REACH();
    if (points.Count() > kMaxPointCount)
        RefuseArgument("POLYNOM::Create",
                       "%d support points are too many for one polynomial (at most %d); a local "
                       "interpolation such as localpolynom suits",
                       points.Count(), kMaxPointCount);
    CheckSupportPoints(points, "POLYNOM::Create", SORTED::STRICTLY);
    x_.assign(points.x.begin(), points.x.end());
    y_.assign(points.y.begin(), points.y.end());
    scale_ = NewtonScale(x_.front(), x_.back());
    std::vector<double> ordinates;
    terms_.clear();
    for (const size_t i : LejaOrder(x_, scale_)) {
        terms_.push_back({x_[i], 0.0});
        ordinates.push_back(y_[i]);
    }
    DividedDifferences(terms_, ordinates, {}, scale_, "POLYNOM::Create");
    double magnitude = 0;
    for (const NEWTON_TERM& term : terms_) magnitude += std::fabs(term.coefficient);
    // |x - node| <= 2 |x - middle| outside the data, hence the half width 1 / (2 scale).
    reach_.Set((x_.front() + x_.back()) / 2, 0.5 / scale_, points.Count() - 1, magnitude);
    reach_.radius = std::max(reach_.radius, 2 / scale_);
}

JET POLYNOM_CORE::At(double x) const {
    if (!reach_.Holds(x)) RefuseQuery("POLYNOM", reach_, x);
    JET jet = EvaluateNewton(terms_.data(), static_cast<int>(terms_.size()), scale_, x);
    const auto node = std::lower_bound(x_.begin(), x_.end(), x);
    if (node != x_.end() && *node == x) jet.value = y_[static_cast<size_t>(node - x_.begin())];
    return jet;
}

std::vector<long double> POLYNOM_CORE::Coefficients() const {
    std::vector<long double> difference(y_.begin(), y_.end());
    for (size_t order = 1; order < difference.size(); ++order) {
        for (size_t i = difference.size() - 1; i >= order; --i)
            difference[i] = (difference[i] - difference[i - 1]) / (static_cast<long double>(x_[i]) - x_[i - order]);
    }
    return difference;
}

template class POLYNOM<float>;
template class POLYNOM<double>;
