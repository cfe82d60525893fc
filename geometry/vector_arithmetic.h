/// \file vector_arithmetic.h
/// Arithmetic on the vector of space VECTOR_3D<T>: no failures, no allocation, for the inner loops.

#pragma once

#include <cmath>

#include "lib/baselib/containers/records.h"

template <class T>
[[nodiscard]] constexpr VECTOR_3D<T> operator+(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

template <class T>
[[nodiscard]] constexpr VECTOR_3D<T> operator-(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

template <class T>
[[nodiscard]] constexpr VECTOR_3D<T> operator*(T factor, const VECTOR_3D<T>& a) {
    return {factor * a.x, factor * a.y, factor * a.z};
}

template <class T>
[[nodiscard]] constexpr T DotProduct(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <class T>
[[nodiscard]] constexpr VECTOR_3D<T> CrossProduct(const VECTOR_3D<T>& a, const VECTOR_3D<T>& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Euclidean length, by the plain square root of the sum of squares.
template <class T>
[[nodiscard]] T Length(const VECTOR_3D<T>& a) {
    return std::sqrt(DotProduct(a, a));
}
