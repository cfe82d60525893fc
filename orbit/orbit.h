/// \file orbit.h
/// The concrete orbit by its types. What it does, SAMPLED_ORBIT does in double; where its vectors come from is the
/// business of the derived classes POOL_ORBIT and MDB_ORBIT.

#pragma once

#include "orbit/sampled_orbit.h"

/// @tparam T  float or double: the coordinates and the interpolation's abscissa
/// @tparam S  time type of the state vectors: double, UNIVERSAL_TIME or MISSION_ELAPSED_TIME
/// @tparam I  interpolator of one axis
/// @tparam P  its support point: POINT<T>, or DPOINT<T> where the velocities enter the interpolation
template <class T, class S, class I, class P>
class ORBIT : public SAMPLED_ORBIT {
  public:
    ORBIT_BASE& operator=(const ORBIT_BASE& aorbit) override {
        CopyFrom(aorbit, "virtual ORBIT_BASE& ORBIT<T,S,I,P>::operator=( const ORBIT_BASE& aorbit )");
        return *this;
    }

  protected:
    ORBIT() : SAMPLED_ORBIT({{TimeKindOf<S>(), std::is_same_v<T, float>}, MakeInterpolator<typename I::CORE>}) {}
    ORBIT(const ORBIT&) = default;
};
