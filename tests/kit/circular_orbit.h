/// \file circular_orbit.h
/// A circular orbit over the turning Earth in closed form: the independent truth of the geometry tests.
/// Frame: Earth-fixed, SI units; it coincides with the inertial frame at t = 0.

#pragma once

#include <cmath>

#include "geometry/vector_arithmetic.h"

template <class T>
struct CIRCULAR_STATE {
    VECTOR_3D<T> position_m;
    VECTOR_3D<T> velocity_m_s;
    VECTOR_3D<T> acceleration_m_s2;
};

template <class T>
struct CIRCULAR_ORBIT {
    T radius_m = 7071000;
    T inclination_rad = T(1.7);
    T node_rad = 0;           ///< longitude of the ascending node at t = 0
    T argument_rad = T(0.6);  ///< angle from the node at t = 0
    T first_time_s = -100;
    T last_time_s = 100;

    static constexpr T kEarthRate = T(7.2921151467e-5L);  ///< rad/s

    [[nodiscard]] T FirstTime() const { return first_time_s; }
    [[nodiscard]] T LastTime() const { return last_time_s; }
    [[nodiscard]] T MeanMotion() const { return std::sqrt(T(3.986004418e14L) / radius_m) / radius_m; }

    [[nodiscard]] VECTOR_3D<T> Position(T t) const { return EarthFixed(Inertial(t), t); }

    [[nodiscard]] VECTOR_3D<T> Velocity(T t) const {
        return EarthFixed(InertialVelocity(t) - CrossProduct(Rotation(), Inertial(t)), t);
    }

    /// Inertial acceleration less the Coriolis and centrifugal terms.
    [[nodiscard]] VECTOR_3D<T> Acceleration(T t) const {
        const VECTOR_3D<T> inertial = Inertial(t);
        const T n = MeanMotion();
        return EarthFixed(-n * n * inertial - T(2) * CrossProduct(Rotation(), InertialVelocity(t)) +
                              CrossProduct(Rotation(), CrossProduct(Rotation(), inertial)),
                          t);
    }

    [[nodiscard]] CIRCULAR_STATE<T> State(T t) const { return {Position(t), Velocity(t), Acceleration(t)}; }

  private:
    static VECTOR_3D<T> Rotation() { return {0, 0, kEarthRate}; }

    [[nodiscard]] VECTOR_3D<T> InPlane(T along, T across) const {
        const T y = across * std::cos(inclination_rad);
        return {along * std::cos(node_rad) - y * std::sin(node_rad),
                along * std::sin(node_rad) + y * std::cos(node_rad), across * std::sin(inclination_rad)};
    }
    [[nodiscard]] VECTOR_3D<T> Inertial(T t) const {
        const T u = argument_rad + MeanMotion() * t;
        return InPlane(radius_m * std::cos(u), radius_m * std::sin(u));
    }
    [[nodiscard]] VECTOR_3D<T> InertialVelocity(T t) const {
        const T u = argument_rad + MeanMotion() * t;
        const T speed = radius_m * MeanMotion();
        return InPlane(-speed * std::sin(u), speed * std::cos(u));
    }
    static VECTOR_3D<T> EarthFixed(const VECTOR_3D<T>& v, T t) {
        const T c = std::cos(kEarthRate * t);
        const T s = std::sin(kEarthRate * t);
        return {c * v.x + s * v.y, c * v.y - s * v.x, v.z};
    }
};
