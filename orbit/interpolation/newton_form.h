/// \file newton_form.h
/// Newton's form of an interpolating polynomial,
///   p(x) = c0 + s (x - x0) (c1 + s (x - x1) (c2 + ...)),
/// with simple nodes, or double ones where the derivative is given as well. The scale s brings the nodes to an interval
/// of length 4, the one length on which divided differences neither grow nor decay with their order.
/// Exact at the first node: value c0 (and, if that node is double, first derivative c1 s).

#pragma once

#include <span>

#include "orbit/interpolation/jet.h"

struct NEWTON_TERM {
    double node;
    double coefficient;
};

/// Scale for nodes within first .. last; 1 for a single node.
double NewtonScale(double first, double last);

/// Fills the coefficients of the terms, whose nodes are set; equal nodes stand next to each other, at most two.
/// Computed in extended precision.
/// @param y      ordinate at each term's node
/// @param slope  first derivative at each term's node; may be empty when all nodes differ
/// @throws ERROR_ARGUMENT (logged as owner's) when different nodes lie closer than 1e-9 of their span, or a coefficient
/// leaves the range
void DividedDifferences(std::span<NEWTON_TERM> terms, std::span<const double> y, std::span<const double> slope,
                        double scale, const char* owner);

inline JET EvaluateNewton(const NEWTON_TERM* terms, int count, double scale, double x) {
    double value = terms[count - 1].coefficient;
    double first = 0;
    double half_second = 0;
    for (int i = count - 2; i >= 0; --i) {
        const double step = (x - terms[i].node) * scale;
        half_second = step * half_second + first;
        first = step * first + value;
        value = step * value + terms[i].coefficient;
    }
    return {value, first * scale, 2 * half_second * scale * scale};
}
