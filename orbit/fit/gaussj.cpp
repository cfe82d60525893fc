#include "orbit/fit/gaussj.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "orbit/fit/nr_allocators.h"

namespace NUMERICS {

namespace {

struct PIVOT {
    int row = 0;
    int column = 0;
};

/// The greatest element among rows and columns without a pivot; {0, 0} when none is finite.
template <class T>
PIVOT GreatestElement(T** a, int n, const std::vector<bool>& has_pivot) {
    PIVOT pivot;
    T greatest = -1;
    for (int row = 1; row <= n; ++row) {
        if (has_pivot[row]) continue;
        for (int column = 1; column <= n; ++column) {
            const T size = std::fabs(a[row][column]);
            if (has_pivot[column] || !std::isfinite(size) || size <= greatest) continue;
            greatest = size;
            pivot = {row, column};
        }
    }
    return pivot;
}

/// Clears column `pivot` of all other rows; the freed column takes up the inverse.
template <class T>
void Eliminate(T** a, int n, T** b, int m, int pivot) {
    const T inverse = 1 / a[pivot][pivot];
    a[pivot][pivot] = 1;
    for (int k = 1; k <= n; ++k) a[pivot][k] *= inverse;
    for (int k = 1; k <= m; ++k) b[pivot][k] *= inverse;
    for (int row = 1; row <= n; ++row) {
        const T factor = a[row][pivot];
        if (row == pivot || factor == 0) continue;
        a[row][pivot] = 0;
        for (int k = 1; k <= n; ++k) a[row][k] -= a[pivot][k] * factor;
        for (int k = 1; k <= m; ++k) b[row][k] -= b[pivot][k] * factor;
    }
}

}  // namespace

template <class T>
void gaussj(T** a, int n, T** b, int m) {
    std::vector<bool> has_pivot(static_cast<size_t>(n) + 1, false);
    std::vector<PIVOT> pivots;
    for (int step = 0; step < n; ++step) {
        const PIVOT pivot = GreatestElement(a, n, has_pivot);
        if (pivot.row == 0) nrerror("gaussj: Singular Matrix-1");
        if (a[pivot.row][pivot.column] == 0) nrerror("gaussj: Singular Matrix-2");
        has_pivot[pivot.column] = true;
        pivots.push_back(pivot);
        if (pivot.row != pivot.column) {  // elements, not row pointers: the matrices belong to the caller
            std::swap_ranges(a[pivot.row] + 1, a[pivot.row] + 1 + n, a[pivot.column] + 1);
            std::swap_ranges(b[pivot.row] + 1, b[pivot.row] + 1 + m, b[pivot.column] + 1);
        }
        Eliminate(a, n, b, m, pivot.column);
    }
    // The rows changed places; the inverse has its columns in the places the rows came from.
    for (auto pivot = pivots.rbegin(); pivot != pivots.rend(); ++pivot)
        for (int row = 1; pivot->row != pivot->column && row <= n; ++row)
            std::swap(a[row][pivot->row], a[row][pivot->column]);
}

template void gaussj(float**, int, float**, int);
template void gaussj(double**, int, double**, int);

}  // namespace NUMERICS
