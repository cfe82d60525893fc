/// \file orbit_state.h
/// What an orbit answers.

#pragma once

#include "lib/baselib/containers/records.h"

/// Frame: Earth-fixed.
struct ORBIT_STATE {
    VECTOR_3D<double> position_m;
    VECTOR_3D<double> velocity_m_s;
    VECTOR_3D<double> acceleration_m_s2;
};
