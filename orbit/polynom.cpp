#include "orbit/polynom.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

template <class T>
T Saturated(long double value) {
    constexpr long double kLargest = std::numeric_limits<T>::max();
    return static_cast<T>(std::clamp(value, -kLargest, kLargest));
}

}  // namespace

template <class T>
void POLYNOM<T>::Create(const ARRAY<POINT<T>>& points) {
    reach_ = REACH();
    if (points.Count() > kMaxPointCount)
        RefuseArgument("POLYNOM::Create",
                       "%d support points are too many for one polynomial (at most %d); a local "
                       "interpolation such as localpolynom suits",
                       points.Count(), kMaxPointCount);
    points_ = CheckedSupportPoints(points, "POLYNOM::Create", SORTED::STRICTLY);
    scale_ = NewtonScale(points_.x.front(), points_.x.back());
    std::vector<double> ordinates;
    terms_.clear();
    for (const size_t i : LejaOrder(points_.x, scale_)) {
        terms_.push_back({points_.x[i], 0.0});
        ordinates.push_back(points_.y[i]);
    }
    DividedDifferences(terms_, ordinates, {}, scale_, "POLYNOM::Create");
    double magnitude = 0;
    for (const NEWTON_TERM& term : terms_) magnitude += std::fabs(term.coefficient);
    const int degree = points_.Count() - 1;
    // |x - node| <= 2 |x - middle| outside the data, hence the half width 1 / (2 scale).
    reach_.Set((points_.x.front() + points_.x.back()) / 2, 0.5 / scale_, degree, magnitude);
    reach_.radius = std::max(reach_.radius, 2 / scale_);
}

template <class T>
void POLYNOM<T>::Evaluate(T x, T& value, T& first, T& second) const {
    const double at = static_cast<double>(x);
    if (!reach_.Holds(at)) RefuseQuery("POLYNOM", reach_, at);
    JET jet = EvaluateNewton(terms_.data(), static_cast<int>(terms_.size()), scale_, at);
    const auto node = std::lower_bound(points_.x.begin(), points_.x.end(), at);
    if (node != points_.x.end() && *node == at) jet.value = points_.y[static_cast<size_t>(node - points_.x.begin())];
    Deliver(jet, "POLYNOM", value, first, second);
}

template <class T>
ARRAY<T> POLYNOM<T>::GetCoeffs() const {
    std::vector<long double> difference(points_.y.begin(), points_.y.end());
    ARRAY<T> coefficients(0, points_.Count());
    for (int order = 0; order < points_.Count(); ++order) {
        for (int i = points_.Count() - 1; order > 0 && i >= order; --i)
            difference[i] =
                (difference[i] - difference[i - 1]) / (static_cast<long double>(points_.x[i]) - points_.x[i - order]);
        coefficients[order] = Saturated<T>(difference[static_cast<size_t>(order)]);
    }
    return coefficients;
}

template class POLYNOM<float>;
template class POLYNOM<double>;
