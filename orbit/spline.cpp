#include "orbit/spline.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"
#include "orbit/gaussj.h"
#include "orbit/nr_allocators.h"

namespace {

/// Row i of the continuity system, i = 1 .. n - 2:
///   h(i-1) M(i-1) + 2 (h(i-1) + h(i)) M(i) + h(i) M(i+1) = 6 (slope(i) - slope(i-1))
struct CONTINUITY_ROW {
    double before, diagonal, after, right;
};

std::vector<CONTINUITY_ROW> ContinuityRows(const SUPPORT_POINTS& points) {
    std::vector<CONTINUITY_ROW> rows;
    for (size_t i = 1; i + 1 < points.x.size(); ++i) {
        const double h_before = points.x[i] - points.x[i - 1];
        const double h_after = points.x[i + 1] - points.x[i];
        rows.push_back({h_before, 2 * (h_before + h_after), h_after,
                        6 * ((points.y[i + 1] - points.y[i]) / h_after - (points.y[i] - points.y[i - 1]) / h_before)});
    }
    return rows;
}

std::vector<double> SolveFull(const std::vector<CONTINUITY_ROW>& rows) {
    const int n = static_cast<int>(rows.size());
    double** const a = NUMERICS::matrix<double>(1, n, 1, n);
    double** const b = NUMERICS::matrix<double>(1, n, 1, 1);
    for (int i = 1; i <= n; ++i) {
        const CONTINUITY_ROW& row = rows[static_cast<size_t>(i - 1)];
        if (i > 1) a[i][i - 1] = row.before;
        a[i][i] = row.diagonal;
        if (i < n) a[i][i + 1] = row.after;
        b[i][1] = row.right;
    }
    NUMERICS::gaussj(a, n, b, 1);
    std::vector<double> solution;
    for (int i = 1; i <= n; ++i) solution.push_back(b[i][1]);
    NUMERICS::free_matrix(a, 1, n, 1, n);
    NUMERICS::free_matrix(b, 1, n, 1, 1);
    return solution;
}

/// Elimination without pivoting: the system is diagonally dominant.
std::vector<double> SolveTridiagonal(std::vector<CONTINUITY_ROW> rows) {
    for (size_t i = 1; i < rows.size(); ++i) {
        const double factor = rows[i].before / rows[i - 1].diagonal;
        rows[i].diagonal -= factor * rows[i - 1].after;
        rows[i].right -= factor * rows[i - 1].right;
    }
    std::vector<double> solution(rows.size());
    for (size_t i = rows.size(); i-- > 0;) {
        const double later = i + 1 < rows.size() ? rows[i].after * solution[i + 1] : 0;
        solution[i] = (rows[i].right - later) / rows[i].diagonal;
    }
    return solution;
}

}  // namespace

template <class T>
void SPLINE<T>::Create(const ARRAY<POINT<T>>& points) {
    reach_ = REACH();
    points_ = CheckedSupportPoints(points, "SPLINE::Create", SORTED::STRICTLY);
    if (points_.Count() < 2) RefuseArgument("SPLINE::Create", "more than 1 value needed.");
    const std::vector<CONTINUITY_ROW> rows = ContinuityRows(points_);
    std::vector<double> moments = rows.size() <= kMaxFullSystem ? SolveFull(rows) : SolveTridiagonal(rows);
    moments.insert(moments.begin(), 0.0);
    moments.push_back(0.0);

    cubics_.clear();
    for (size_t i = 0; i + 1 < points_.x.size(); ++i) {
        const double h = points_.x[i + 1] - points_.x[i];
        cubics_.push_back({points_.y[i],
                           (points_.y[i + 1] - points_.y[i]) / h - h * (2 * moments[i] + moments[i + 1]) / 6,
                           moments[i] / 2, (moments[i + 1] - moments[i]) / (6 * h)});
    }
    const double half = (points_.x.back() - points_.x.front()) / 2;
    double magnitude = 0;
    for (const CUBIC& cubic : {cubics_.front(), cubics_.back()})
        magnitude +=
            std::fabs(cubic.a) + half * (std::fabs(cubic.b) + half * (std::fabs(cubic.c) + half * std::fabs(cubic.e)));
    reach_.Set(points_.x.front() + half, half / 2, 3, magnitude);
    reach_.radius = std::max(reach_.radius, 2 * half);
}

template <class T>
void SPLINE<T>::Evaluate(T x, T& value, T& first, T& second) const {
    const double at = static_cast<double>(x);
    if (!reach_.Holds(at)) RefuseQuery("SPLINE", reach_, at);
    const auto interval = static_cast<size_t>(points_.IntervalOf(at));
    const CUBIC& cubic = cubics_[interval];
    const double d = at - points_.x[interval];
    const JET jet{cubic.a + d * (cubic.b + d * (cubic.c + d * cubic.e)), cubic.b + d * (2 * cubic.c + d * 3 * cubic.e),
                  2 * cubic.c + d * 6 * cubic.e};
    Deliver(jet, "SPLINE", value, first, second);
}

template <class T>
ARRAY<T> SPLINE<T>::GetCoeffs() const {
    Log().Message(LOGGING_LEVEL::WARNING, "SPLINE::GetCoeffs() makes no sense");
    return {};
}

template class SPLINE<float>;
template class SPLINE<double>;
