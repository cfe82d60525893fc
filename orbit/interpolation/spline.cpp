#include "orbit/interpolation/spline.h"

#include <algorithm>
#include <cmath>

#include "lib/baselib/logging/logging.h"
#include "orbit/fit/gaussj.h"
#include "orbit/fit/nr_allocators.h"

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

/// Interval 0 .. count - 2 that holds x; the first or the last one for an x outside.
size_t IntervalOf(const std::vector<double>& abscissae, double x) {
    if (abscissae.size() < 3) return 0;
    const auto after = std::upper_bound(abscissae.begin() + 1, abscissae.end() - 1, x);
    return static_cast<size_t>(after - abscissae.begin()) - 1;
}

}  // namespace

void SPLINE_CORE::Create(const SUPPORT_POINTS& points) {
    reach_ = REACH();
    CheckSupportPoints(points, "SPLINE::Create", SORTED::STRICTLY);
    if (points.Count() < 2) RefuseArgument("SPLINE::Create", "more than 1 value needed.");
    const std::vector<CONTINUITY_ROW> rows = ContinuityRows(points);
    std::vector<double> moments = rows.size() <= kMaxFullSystem ? SolveFull(rows) : SolveTridiagonal(rows);
    moments.insert(moments.begin(), 0.0);
    moments.push_back(0.0);

    x_.assign(points.x.begin(), points.x.end());
    cubics_.clear();
    for (size_t i = 0; i + 1 < x_.size(); ++i) {
        const double h = x_[i + 1] - x_[i];
        cubics_.push_back({points.y[i], (points.y[i + 1] - points.y[i]) / h - h * (2 * moments[i] + moments[i + 1]) / 6,
                           moments[i] / 2, (moments[i + 1] - moments[i]) / (6 * h)});
    }
    SetReach();
}

void SPLINE_CORE::SetReach() {
    const double half = (x_.back() - x_.front()) / 2;
    double magnitude = 0;
    for (const CUBIC& cubic : {cubics_.front(), cubics_.back()})
        magnitude +=
            std::fabs(cubic.a) + half * (std::fabs(cubic.b) + half * (std::fabs(cubic.c) + half * std::fabs(cubic.e)));
    reach_.Set(x_.front() + half, half / 2, 3, magnitude);
    reach_.radius = std::max(reach_.radius, 2 * half);
}

JET SPLINE_CORE::At(double x) const {
    if (!reach_.Holds(x)) RefuseQuery("SPLINE", reach_, x);
    const size_t interval = IntervalOf(x_, x);
    const CUBIC& cubic = cubics_[interval];
    const double d = x - x_[interval];
    return {cubic.a + d * (cubic.b + d * (cubic.c + d * cubic.e)), cubic.b + d * (2 * cubic.c + d * 3 * cubic.e),
            2 * cubic.c + d * 6 * cubic.e};
}

std::vector<long double> SPLINE_CORE::Coefficients() const {
    Log().Message(LOGGING_LEVEL::WARNING, "SPLINE::GetCoeffs() makes no sense");
    return {};
}

template class SPLINE<float>;
template class SPLINE<double>;
