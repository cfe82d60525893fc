#include "orbit/hermite_poly.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"

template <class T>
void HERMITE_POLY<T>::SetSupportPointCount(int node_count) {
    if (node_count == -1) return;
    if (node_count < 1 || node_count > kMaxNodeCount)
        RefuseArgument("HERMITE_POLY", "the node count %d is outside 1..%d", node_count, kMaxNodeCount);
    wanted_node_count_ = node_count;
}

template <class T>
void HERMITE_POLY<T>::Create(const ARRAY<DPOINT<T>>& points) {
    is_created_ = false;
    points_ = CheckedSupportPoints(points, "HERMITE_POLY::Create", SORTED::STRICTLY, true);
    node_count_ = std::min(wanted_node_count_, points_.Count());
    if (node_count_ < wanted_node_count_)
        Log().Message(LOGGING_LEVEL::WARNING, "HERMITE_POLY::Create: change node count from %d to %d",
                      wanted_node_count_, node_count_);
    terms_.assign(points_.x.size() * 2 * static_cast<size_t>(node_count_), {});
    scales_.assign(points_.x.size(), 1.0);
    for (int point = 0; point < points_.Count(); ++point) CreateCell(point);
    is_created_ = true;
}

/// The polynomial for x between point - 1 (exclusive) and point: its nodes from that point outwards.
template <class T>
void HERMITE_POLY<T>::CreateCell(int point) {
    const int start = std::clamp(point - node_count_ / 2, 0, points_.Count() - node_count_);
    std::vector<int> nodes;
    for (int node = start; node < start + node_count_; ++node) nodes.push_back(node);
    std::stable_sort(nodes.begin(), nodes.end(),
                     [point](int a, int b) { return std::abs(a - point) < std::abs(b - point); });

    const auto term_count = 2 * static_cast<size_t>(node_count_);
    const std::span<NEWTON_TERM> terms(&terms_[static_cast<size_t>(point) * term_count], term_count);
    std::vector<double> ordinates, slopes;
    for (const int node : nodes)
        for (int twice = 0; twice < 2; ++twice) {
            terms[ordinates.size()].node = points_.x[node];
            ordinates.push_back(points_.y[node]);
            slopes.push_back(points_.slope[node]);
        }
    scales_[point] = NewtonScale(points_.x[start], points_.x[start + node_count_ - 1]);
    DividedDifferences(terms, ordinates, slopes, scales_[point], "HERMITE_POLY::Create");
}

template <class T>
void HERMITE_POLY<T>::Evaluate(T x, T& value, T& first, T& second) const {
    const double at = static_cast<double>(x);
    if (!is_created_) RefuseArgument("HERMITE_POLY", "a query at %.17g before there are support points", at);
    // Quiet comparisons: a NaN counts as outside, without a trap.
    if (!std::isgreaterequal(at, points_.x.front()) || !std::islessequal(at, points_.x.back())) {
        Log() << LOGGING_LEVEL::ALARM << "interpolation point outside of data constraints\n";
        HardStop();
    }
    const auto point = std::lower_bound(points_.x.begin(), points_.x.end(), at) - points_.x.begin();
    const int term_count = 2 * node_count_;
    const JET jet = EvaluateNewton(&terms_[static_cast<size_t>(point * term_count)], term_count, scales_[point], at);
    if (std::isnan(jet.value) || std::isnan(jet.first) || std::isnan(jet.second)) {
        Log() << LOGGING_LEVEL::WARNING << "interpolation failure !!!! Result is Nan!!\n";
        HardStop();
    }
    Deliver(jet, "HERMITE_POLY", value, first, second);
}

template class HERMITE_POLY<float>;
template class HERMITE_POLY<double>;
