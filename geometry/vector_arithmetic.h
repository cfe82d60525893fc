/// \file vector_arithmetic.h
/// Arithmetic on the vector of space VECTOR_3D<T> (no failures, no allocation, for the inner loops; inlined by force,
/// so that sources of a vector level may use it) and on the vector of variable dimension VECTOR<T>, whose operations
/// require equal dimensions. Errors: those of VECTOR<T> are thrown as plain text (const char*).

#pragma once

#include <cmath>

#include "lib/baselib/containers/records.h"
#include "lib/baselib/containers/vector.h"
#include "lib/baselib/errors/error_exception.h"

template <class T>
[[nodiscard, gnu::always_inline]] constexpr VECTOR_3D<T> operator+(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

template <class T>
[[nodiscard, gnu::always_inline]] constexpr VECTOR_3D<T> operator-(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

template <class T>
[[nodiscard, gnu::always_inline]] constexpr VECTOR_3D<T> operator*(T factor, const VECTOR_3D<T>& a) {
    return {factor * a.x, factor * a.y, factor * a.z};
}

template <class T>
[[nodiscard, gnu::always_inline]] constexpr T DotProduct(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <class T>
[[nodiscard, gnu::always_inline]] constexpr VECTOR_3D<T> CrossProduct(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Euclidean length, by the plain square root of the sum of squares.
template <class T>
[[nodiscard, gnu::always_inline]] inline T Length(const VECTOR_3D<T>& a) {
    return std::sqrt(DotProduct(a, a));
}

/// Of length 1; 0 stays 0. The addend, which no other square feels, stands for a choice: loops stay vector code.
[[nodiscard, gnu::always_inline]] inline VECTOR_3D<double> Unit(const VECTOR_3D<double>& a) {
    return (1.0 / std::sqrt(DotProduct(a, a) + 1e-300)) * a;
}

template <class T>
VECTOR<T>& operator+=(VECTOR<T>& a, const VECTOR<T>& b) {
    if (a.Dimension() != b.Dimension()) throw "VECTOR operator += : vectors have different dimensions";
    for (int i = 0; i < a.Dimension(); ++i) a[i] += b[i];
    return a;
}

template <class T>
VECTOR<T>& operator-=(VECTOR<T>& a, const VECTOR<T>& b) {
    if (a.Dimension() != b.Dimension()) throw "VECTOR operator -= : vectors have different dimensions";
    for (int i = 0; i < a.Dimension(); ++i) a[i] -= b[i];
    return a;
}

template <class T>
[[nodiscard]] VECTOR<T> operator+(VECTOR<T> a, const VECTOR<T>& b) {
    if (a.Dimension() != b.Dimension()) throw "VECTOR operator + : vectors have different dimensions";
    return a += b;
}

template <class T>
[[nodiscard]] VECTOR<T> operator-(VECTOR<T> a, const VECTOR<T>& b) {
    if (a.Dimension() != b.Dimension()) throw "VECTOR operator - : vectors have different dimensions";
    return a -= b;
}

/// Refuses a divisor of exactly 0 only.
template <class T>
VECTOR<T>& operator/=(VECTOR<T>& a, T divisor) {
    if (divisor == T(0)) throw "VECTOR operator /= : division by 0.0";
    for (T& element : a) element /= divisor;
    return a;
}

template <class T>
[[nodiscard]] T DotProduct(const VECTOR<T>& a, const VECTOR<T>& b) {
    if (a.Dimension() != b.Dimension()) throw "DotProduct: vectors have different dimensions";
    T sum = 0;
    for (int i = 0; i < a.Dimension(); ++i) sum += a[i] * b[i];
    return sum;
}

template <class T>
[[nodiscard]] VECTOR<T> CrossProduct(const VECTOR<T>& a, const VECTOR<T>& b) {
    if (a.Dimension() != 3) throw "CrossProduct: vector a has not dimension of 3";
    if (b.Dimension() != 3) throw "CrossProduct: vector b has not dimension of 3";
    try {
        return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    } catch (const ERROR_NO_MEMORY&) {
        throw "CrossProduct: can not allocate vector memory";
    }
}
