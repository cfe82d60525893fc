#include "orbit/fit/svdcmp.h"

#include <algorithm>
#include <cmath>

#include "orbit/fit/nr_allocators.h"

namespace NUMERICS {

namespace {

constexpr int kMaxSteps = 30;

template <class T>
T Hypotenuse(T a, T b) {
    const T larger = std::max(std::fabs(a), std::fabs(b));
    const T smaller = std::min(std::fabs(a), std::fabs(b));
    if (larger == 0) return 0;
    const T ratio = smaller / larger;
    return larger * std::sqrt(1 + ratio * ratio);
}

/// The rotation that turns (along, across) into (length, 0).
template <class T>
struct ROTATION {
    T c = 1;
    T s = 0;

    T Set(T along, T across) {
        const T length = Hypotenuse(along, across);
        c = length == 0 ? T{1} : along / length;
        s = length == 0 ? T{0} : across / length;
        return length;
    }
    void Columns(T** matrix, int rows, int j, int i) const {
        for (int row = 1; row <= rows; ++row) {
            const T x = matrix[row][j];
            const T z = matrix[row][i];
            matrix[row][j] = x * c + z * s;
            matrix[row][i] = z * c - x * s;
        }
    }
};

template <class T>
struct DECOMPOSITION {
    T** a;
    int m;
    int n;
    T* w;  ///< diagonal
    T** v;
    T* e;  ///< e[i]: element (i - 1, i), above the diagonal; e[1] is 0
    T norm = 0;

    void Bidiagonalise();
    T ReflectColumn(int i);
    T ReflectRow(int i);
    void AccumulateRight();
    void AccumulateLeft();
    void Diagonalise();
    bool Negligible(T value) const { return std::fabs(value) + norm == norm; }
    int SplitPoint(int k);
    void Cancel(int l, int k);
    T Shift(int l, int k) const;
    void QrStep(int l, int k);
};

template <class T>
void DECOMPOSITION<T>::Bidiagonalise() {
    e[1] = 0;
    for (int i = 1; i <= n; ++i) {
        w[i] = i <= m ? ReflectColumn(i) : T{0};
        if (i < n) e[i + 1] = i <= m ? ReflectRow(i) : T{0};
        norm = std::max(norm, std::fabs(w[i]) + std::fabs(e[i]));
    }
}

/// Householder reflection that clears column i below the diagonal; its vector stays in the column.
template <class T>
T DECOMPOSITION<T>::ReflectColumn(int i) {
    T scale = 0;
    for (int k = i; k <= m; ++k) scale += std::fabs(a[k][i]);
    if (scale == 0) return 0;
    T square = 0;
    for (int k = i; k <= m; ++k) {
        a[k][i] /= scale;
        square += a[k][i] * a[k][i];
    }
    const T f = a[i][i];
    const T g = -std::copysign(std::sqrt(square), f);
    const T h = f * g - square;
    a[i][i] = f - g;
    for (int j = i + 1; j <= n; ++j) {
        T product = 0;
        for (int k = i; k <= m; ++k) product += a[k][i] * a[k][j];
        for (int k = i; k <= m; ++k) a[k][j] += product / h * a[k][i];
    }
    for (int k = i; k <= m; ++k) a[k][i] *= scale;
    return scale * g;
}

/// The same for row i, right of the element next to the diagonal; the vector, divided by h, is needed again for V.
template <class T>
T DECOMPOSITION<T>::ReflectRow(int i) {
    const int l = i + 1;
    T scale = 0;
    for (int k = l; k <= n; ++k) scale += std::fabs(a[i][k]);
    if (scale == 0) return 0;
    T square = 0;
    for (int k = l; k <= n; ++k) {
        a[i][k] /= scale;
        square += a[i][k] * a[i][k];
    }
    const T f = a[i][l];
    const T g = -std::copysign(std::sqrt(square), f);
    const T h = f * g - square;
    a[i][l] = f - g;
    for (int j = l; j <= m; ++j) {
        T product = 0;
        for (int k = l; k <= n; ++k) product += a[j][k] * a[i][k];
        for (int k = l; k <= n; ++k) a[j][k] += product / h * a[i][k];
    }
    for (int k = l; k <= n; ++k) a[i][k] *= scale;
    return scale * g;
}

template <class T>
void DECOMPOSITION<T>::AccumulateRight() {
    for (int i = n; i >= 1; --i) {
        const int l = i + 1;
        if (l <= n && e[l] != 0) {
            // Two divisions instead of one by a product: the product may underflow.
            for (int j = l; j <= n; ++j) v[j][i] = (a[i][j] / a[i][l]) / e[l];
            for (int j = l; j <= n; ++j) {
                T product = 0;
                for (int k = l; k <= n; ++k) product += a[i][k] * v[k][j];
                for (int k = l; k <= n; ++k) v[k][j] += product * v[k][i];
            }
        }
        for (int j = l; j <= n; ++j) v[i][j] = v[j][i] = 0;
        v[i][i] = 1;
    }
}

template <class T>
void DECOMPOSITION<T>::AccumulateLeft() {
    for (int i = std::min(m, n); i >= 1; --i) {
        const int l = i + 1;
        for (int j = l; j <= n; ++j) a[i][j] = 0;
        if (w[i] == 0) {
            for (int k = i; k <= m; ++k) a[k][i] = 0;
        } else {
            for (int j = l; j <= n; ++j) {
                T product = 0;
                for (int k = l; k <= m; ++k) product += a[k][i] * a[k][j];
                const T factor = (product / a[i][i]) / w[i];
                for (int k = i; k <= m; ++k) a[k][j] += factor * a[k][i];
            }
            for (int k = i; k <= m; ++k) a[k][i] /= w[i];
        }
        a[i][i] += 1;
    }
}

/// The first row l of the block that ends at k and does not fall apart; a zero on the diagonal before it is cancelled.
template <class T>
int DECOMPOSITION<T>::SplitPoint(int k) {
    for (int l = k;; --l) {
        if (l == 1 || Negligible(e[l])) return l;
        if (Negligible(w[l - 1])) {
            Cancel(l, k);
            return l;
        }
    }
}

/// w[l - 1] is zero: rotations from the left clear e[l].
template <class T>
void DECOMPOSITION<T>::Cancel(int l, int k) {
    T across = e[l];
    e[l] = 0;
    for (int i = l; i <= k; ++i) {
        if (Negligible(across)) break;
        ROTATION<T> rotation;
        w[i] = rotation.Set(w[i], -across);
        rotation.Columns(a, m, l - 1, i);
        if (i < k) {
            across = rotation.s * e[i + 1];
            e[i + 1] *= rotation.c;
        }
    }
}

/// First element of the shifted column, from the block's lower 2 x 2 corner.
template <class T>
T DECOMPOSITION<T>::Shift(int l, int k) const {
    const T x = w[l];
    const T y = w[k - 1];
    const T z = w[k];
    const T g = e[k - 1];
    const T h = e[k];
    const T f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
    const T root = std::copysign(Hypotenuse(f, T{1}), f);
    return ((x - z) * (x + z) + h * (y / (f + root) - h)) / x;
}

template <class T>
void DECOMPOSITION<T>::QrStep(int l, int k) {
    T f = Shift(l, k);
    T x = w[l];
    ROTATION<T> rotation{1, 1};
    for (int j = l; j < k; ++j) {
        const int i = j + 1;
        T g = rotation.c * e[i];
        T h = rotation.s * e[i];
        T y = w[i];
        e[j] = rotation.Set(f, h);
        f = x * rotation.c + g * rotation.s;
        g = g * rotation.c - x * rotation.s;
        h = y * rotation.s;
        y *= rotation.c;
        rotation.Columns(v, n, j, i);
        w[j] = rotation.Set(f, h);
        f = rotation.c * g + rotation.s * y;
        x = rotation.c * y - rotation.s * g;
        rotation.Columns(a, m, j, i);
    }
    e[l] = 0;
    e[k] = f;
    w[k] = x;
}

template <class T>
void DECOMPOSITION<T>::Diagonalise() {
    for (int k = n; k >= 1; --k) {
        for (int step = 1;; ++step) {
            const int l = SplitPoint(k);
            if (l == k) break;
            if (step == kMaxSteps) nrerror("no convergence in 30 svdcmp iterations");
            QrStep(l, k);
        }
        if (w[k] >= 0) continue;
        w[k] = -w[k];
        for (int row = 1; row <= n; ++row) v[row][k] = -v[row][k];
    }
}

}  // namespace

template <class T>
void svdcmp(T** a, int m, int n, T* w, T** v, T* work) {
    DECOMPOSITION<T> decomposition{a, m, n, w, v, work};
    decomposition.Bidiagonalise();
    decomposition.AccumulateRight();
    decomposition.AccumulateLeft();
    decomposition.Diagonalise();
}

template <class T>
void svbksb(T** u, const T* w, T** v, int m, int n, const T* b, T* x, T* work) {
    for (int j = 1; j <= n; ++j) {
        T projection = 0;
        for (int i = 1; w[j] != 0 && i <= m; ++i) projection += u[i][j] * b[i];
        work[j] = w[j] == 0 ? T{0} : projection / w[j];
    }
    for (int j = 1; j <= n; ++j) {
        x[j] = 0;
        for (int k = 1; k <= n; ++k) x[j] += v[j][k] * work[k];
    }
}

template void svdcmp(float**, int, int, float*, float**, float*);
template void svdcmp(double**, int, int, double*, double**, double*);
template void svdcmp(long double**, int, int, long double*, long double**, long double*);
template void svbksb(float**, const float*, float**, int, int, const float*, float*, float*);
template void svbksb(double**, const double*, double**, int, int, const double*, double*, double*);
template void svbksb(long double**, const long double*, long double**, int, int, const long double*, long double*,
                     long double*);

}  // namespace NUMERICS
