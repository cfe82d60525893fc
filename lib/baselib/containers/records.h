/// \file records.h
/// The small value records that the whole system shares: plain aggregates, no behaviour.

#pragma once

/// Support point of an interpolator, or a point of a two-dimensional grid (x: column, y: row).
template <class T>
struct POINT {
    T x{};
    T y{};
};

/// Support point with first derivative dy/dx, for Hermite interpolation.
template <class T>
struct DPOINT {
    T x{};
    T y{};
    T dy{};
};

template <class T>
struct COMPLEX {
    T re{};
    T im{};
};

template <class I, class T>
struct INDEX {
    I index{};
    T value{};
};

template <class T>
struct TUPLE {
    T first{};
    T second{};
};

/// First index and number of elements of an array.
template <class T>
struct RANGE {
    T first{};
    T count{};

    friend bool operator==(const RANGE&, const RANGE&) = default;
};

/// A vector of three-dimensional space; arithmetic lives in geometry/.
template <class T>
struct VECTOR_3D {
    T x{};
    T y{};
    T z{};
};
