#include "orbit/interpolation/hermite_poly.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"

void HERMITE_POLY_CORE::SetSupportPointCount(int node_count) {
    if (node_count == -1) return;
    if (node_count < 1 || node_count > kMaxNodeCount)
        RefuseArgument("HERMITE_POLY", "the node count %d is outside 1..%d", node_count, kMaxNodeCount);
    wanted_node_count_ = node_count;
}

void HERMITE_POLY_CORE::Create(const SUPPORT_POINTS& points) {
    is_created_ = false;
    CheckSupportPoints(points, "HERMITE_POLY::Create", SORTED::STRICTLY, true);
    x_.assign(points.x.begin(), points.x.end());
    node_count_ = std::min(wanted_node_count_, points.Count());
    if (node_count_ < wanted_node_count_)
        Log().Message(LOGGING_LEVEL::WARNING, "HERMITE_POLY::Create: change node count from %d to %d",
                      wanted_node_count_, node_count_);
    terms_.assign(x_.size() * 2 * static_cast<size_t>(node_count_), {});
    scales_.assign(x_.size(), 1.0);
    for (int point = 0; point < points.Count(); ++point) CreateCell(points, point);
    is_created_ = true;
}

/// The polynomial for x between point - 1 (exclusive) and point: its nodes from that point outwards.
void HERMITE_POLY_CORE::CreateCell(const SUPPORT_POINTS& points, int point) {
    const int start = std::clamp(point - node_count_ / 2, 0, points.Count() - node_count_);
    std::vector<int> nodes;
    for (int node = start; node < start + node_count_; ++node) nodes.push_back(node);
    std::stable_sort(nodes.begin(), nodes.end(),
                     [point](int a, int b) { return std::abs(a - point) < std::abs(b - point); });

    const auto term_count = 2 * static_cast<size_t>(node_count_);
    const std::span<NEWTON_TERM> terms(&terms_[static_cast<size_t>(point) * term_count], term_count);
    std::vector<double> ordinates, slopes;
    for (const int node : nodes)
        for (int twice = 0; twice < 2; ++twice) {
            terms[ordinates.size()].node = points.x[node];
            ordinates.push_back(points.y[node]);
            slopes.push_back(points.slope[node]);
        }
    scales_[point] = NewtonScale(points.x[start], points.x[start + node_count_ - 1]);
    DividedDifferences(terms, ordinates, slopes, scales_[point], "HERMITE_POLY::Create");
}

JET HERMITE_POLY_CORE::At(double x) const {
    if (!is_created_) RefuseArgument("HERMITE_POLY", "a query at %.17g before there are support points", x);
    // Quiet comparisons: a NaN counts as outside, without a trap.
    if (!std::isgreaterequal(x, x_.front()) || !std::islessequal(x, x_.back())) {
        Log() << LOGGING_LEVEL::ALARM << "interpolation point outside of data constraints\n";
        HardStop();
    }
    const auto point = std::lower_bound(x_.begin(), x_.end(), x) - x_.begin();
    const int term_count = 2 * node_count_;
    const JET jet = EvaluateNewton(&terms_[static_cast<size_t>(point * term_count)], term_count, scales_[point], x);
    if (std::isnan(jet.value) || std::isnan(jet.first) || std::isnan(jet.second)) {
        Log() << LOGGING_LEVEL::WARNING << "interpolation failure !!!! Result is Nan!!\n";
        HardStop();
    }
    return jet;
}

template class HERMITE_POLY<float>;
template class HERMITE_POLY<double>;
