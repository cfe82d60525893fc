/// \file records.h
/// The small value records that the whole system shares: plain aggregates, no behaviour.

#pragma once

/// Support point of an interpolator, or a point of a two-dimensional grid (x: column, y: row).
template <class T>
struct POINT {
    T x{};
    T y{};

    friend bool operator==(const POINT&, const POINT&) = default;
};

/// Support point with first derivative dy/dx, for Hermite interpolation.
template <class T>
struct DPOINT {
    T x{};
    T y{};
    T dy{};

    friend bool operator==(const DPOINT&, const DPOINT&) = default;
};

template <class T>
struct COMPLEX {
    T re{};
    T im{};

    friend bool operator==(const COMPLEX&, const COMPLEX&) = default;
};

template <class I, class T>
struct INDEX {
    I index{};
    T value{};

    friend bool operator==(const INDEX&, const INDEX&) = default;
};

template <class T>
struct TUPLE {
    T first{};
    T second{};

    friend bool operator==(const TUPLE&, const TUPLE&) = default;
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

    friend bool operator==(const VECTOR_3D&, const VECTOR_3D&) = default;
};
