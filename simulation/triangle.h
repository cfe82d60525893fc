/// \file triangle.h
/// Point-in-triangle test by areas, with the tolerance that lets points a little outside still count: neighbouring DEM
/// cells then leave no gap between them. Units: those of the points.

#pragma once

#include <cmath>

#include "lib/baselib/containers/records.h"

/// Areas of the three part triangles may exceed the whole by this part of the whole.
inline constexpr double kInsideTolerance = 0.01;

struct TRIANGLE {
    POINT<double> a;
    POINT<double> b;
    POINT<double> c;
};

[[nodiscard]] inline double TriangleArea(const POINT<double>& a, const POINT<double>& b, const POINT<double>& c) {
    return 0.5 * std::abs(a.x * (b.y - c.y) + b.x * (c.y - a.y) + c.x * (a.y - b.y));
}

/// @param area  area of the triangle, not 0
[[nodiscard]] inline bool IsInsideTriangle(const POINT<double>& p, const TRIANGLE& t, double area) {
    const double parts = TriangleArea(p, t.b, t.c) + TriangleArea(t.a, p, t.c) + TriangleArea(t.a, t.b, p);
    return (parts - area) / area <= kInsideTolerance;
}
