#include "simulation/area_rows.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The seam is at most half the tolerance of a side wide; twice that and a column more leave room for rounding.
constexpr double kSeam = kInsideTolerance;
constexpr double kRoom = 1.0;

/// A needle: its seam is as thin as the rounding of its area, and its columns are asked one by one.
constexpr double kThinnestArea = 1e-3;

struct COLUMNS {
    double first;
    double last;
};

/// Twice the signed area of (a, b, p) for p = (column, row) as slope * column + rest.
struct EDGE {
    double slope;
    double rest;

    EDGE(const POINT<double>& a, const POINT<double>& b, double row)
        : slope(a.y - b.y), rest(a.x * b.y - b.x * a.y + row * (b.x - a.x)) {}
};

/// The columns where each barycentric coordinate lies within -tolerance / 2 and 1 + tolerance / 2: that is where the
/// part areas exceed the whole by at most the tolerance, since what is negative counts twice.
COLUMNS InsideOnRow(const TRIANGLE& t, double row, COLUMNS columns) {
    const EDGE edges[] = {{t.b, t.c, row}, {t.c, t.a, row}, {t.a, t.b, row}};
    const double twice_area = t.a.x * (t.b.y - t.c.y) + t.b.x * (t.c.y - t.a.y) + t.c.x * (t.a.y - t.b.y);
    for (const EDGE& edge : edges) {
        const double low = -0.5 * kInsideTolerance * twice_area - edge.rest;
        const double high = (1.0 + 0.5 * kInsideTolerance) * twice_area - edge.rest;
        if (edge.slope == 0.0) {
            if (std::min(low, high) > 0.0 || std::max(low, high) < 0.0) return {1.0, 0.0};
            continue;
        }
        const double at_low = std::clamp(low / edge.slope, columns.first - kRoom, columns.last + kRoom);
        const double at_high = std::clamp(high / edge.slope, columns.first - kRoom, columns.last + kRoom);
        columns.first = std::max(columns.first, std::min(at_low, at_high));
        columns.last = std::min(columns.last, std::max(at_low, at_high));
        if (columns.last < columns.first - 2.0 * kRoom) return {1.0, 0.0};
    }
    return columns;
}

}  // namespace

AREA_ROWS::AREA_ROWS(const SIMULATION_AREA& area) {
    triangles_.reserve(2 * area.q1.size());
    for (std::size_t i = 0; i < area.q1.size(); ++i) {
        Add({area.q4[i], area.q2[i], area.q1[i]});
        Add({area.q4[i], area.q1[i], area.q3[i]});
    }
}

void AREA_ROWS::Add(const TRIANGLE& t) {
    const double area = TriangleArea(t.a, t.b, t.c);
    if (!(area > 0.0)) return;
    const auto [left, right] = std::minmax({t.a.x, t.b.x, t.c.x});
    const auto [top, bottom] = std::minmax({t.a.y, t.b.y, t.c.y});
    const double across = kSeam * (right - left) + kRoom;
    const double down = kSeam * (bottom - top) + kRoom;
    triangles_.push_back({t, area, top - down, bottom + down, left - across, right + across});
}

void AREA_ROWS::Mark(int row, int first_column, std::vector<unsigned char>& inside) const {
    std::fill(inside.begin(), inside.end(), static_cast<unsigned char>(0));
    for (const BOUNDED_TRIANGLE& triangle : triangles_) {
        if (row < triangle.first_row || row > triangle.last_row) continue;
        MarkTriangle(triangle, row, first_column, inside);
    }
}

void AREA_ROWS::MarkTriangle(const BOUNDED_TRIANGLE& triangle, int row, int first_column,
                             std::vector<unsigned char>& inside) {
    const double last_column = first_column + static_cast<double>(inside.size()) - 1.0;
    COLUMNS columns = {std::max(triangle.first_column, static_cast<double>(first_column)),
                       std::min(triangle.last_column, last_column)};
    if (columns.first > columns.last) return;
    const COLUMNS candidates = columns;
    const bool needle = triangle.area < kThinnestArea;
    if (!needle) columns = InsideOnRow(triangle.corners, row, columns);

    const auto is_inside = [&](int column) {
        return IsInsideTriangle({static_cast<double>(column), static_cast<double>(row)}, triangle.corners,
                                triangle.area);
    };
    // Rounding may move an end of the interval by a column: there the test itself decides.
    int first = static_cast<int>(std::ceil(std::max(columns.first - kRoom, candidates.first)));
    int last = static_cast<int>(std::floor(std::min(columns.last + kRoom, candidates.last)));
    if (needle) {
        for (int column = first; column <= last; ++column) {
            if (is_inside(column)) inside[column - first_column] = 1;
        }
        return;
    }
    while (first <= last && !is_inside(first)) ++first;
    while (last >= first && !is_inside(last)) --last;
    if (first <= last)
        std::fill(&inside[first - first_column], &inside[last - first_column] + 1, static_cast<unsigned char>(1));
}
