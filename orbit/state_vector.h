/// \file state_vector.h
/// One sample of an orbit, and what an orbit answers.

#pragma once

#include "lib/baselib/containers/records.h"

/// Frame: Earth-fixed. @tparam T type of the coordinates  @tparam S time type
template <class T, class S>
struct STATE_VECTOR {
    S time{};
    VECTOR_3D<T> position_m;
    VECTOR_3D<T> velocity_m_s;
};

/// The same as the interpolation sees it: t_s in seconds since the orbit's reference time.
template <class T>
struct ORBIT_SAMPLE {
    T t_s{};
    VECTOR_3D<T> position_m;
    VECTOR_3D<T> velocity_m_s;
};

/// Frame: Earth-fixed.
struct ORBIT_STATE {
    VECTOR_3D<double> position_m;
    VECTOR_3D<double> velocity_m_s;
    VECTOR_3D<double> acceleration_m_s2;
};
