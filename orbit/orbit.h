/// \file orbit.h
/// The concrete orbit: a list of state vectors and its interpolation. Where the vectors come from is the business of
/// the derived classes POOL_ORBIT and MDB_ORBIT.

#pragma once

#include <algorithm>
#include <typeinfo>

#include "orbit/axis_set.h"
#include "orbit/sampled_orbit.h"

/// @tparam T  float or double: the coordinates and the interpolation's abscissa
/// @tparam S  time type of the state vectors: double, UNIVERSAL_TIME or MISSION_ELAPSED_TIME
/// @tparam I  interpolator of one axis
/// @tparam P  its support point: POINT<T>, or DPOINT<T> where the velocities enter the interpolation
template <class T, class S, class I, class P>
class ORBIT : public SAMPLED_ORBIT<T, S> {
  public:
    ORBIT_BASE& operator=(const ORBIT_BASE& aorbit) override {
        if (typeid(*this) != typeid(aorbit)) {
            RefuseAssignment("virtual ORBIT_BASE& ORBIT<T,S,I,P>::operator=( const ORBIT_BASE& aorbit )");
        }
        CopyFrom(static_cast<const ORBIT&>(aorbit));
        return *this;
    }

    [[nodiscard]] ORBIT_STATE State(double t_s) const override {
        if (!this->HasSamples()) RefuseCoreObject();
        if constexpr (std::is_same_v<T, float>) {
            constexpr double kFarOutsideSeconds =
                1e30;  // the interpolators refuse it, the conversion to float would trap
            return axes_.State(static_cast<float>(std::clamp(t_s, -kFarOutsideSeconds, kFarOutsideSeconds)));
        } else {
            return axes_.State(t_s);
        }
    }

  protected:
    ORBIT() = default;
    ORBIT(const ORBIT&) = default;

    void CopyFrom(const ORBIT& other) {
        if (this == &other) return;
        this->CopySamplesFrom(other);
        axes_ = other.axes_;
    }

    /// Checks the vectors, creates the interpolation and only then takes both over.
    /// @throws ERROR_EXCEPTION after a line that names file and key
    void TakeOver(const STATE_VECTORS<T, S>& vectors, const STATE_VECTOR_SOURCE& source) {
        auto samples = this->Checked(vectors, source);
        AXIS_SET<T, I, P> axes;
        try {
            axes.Create(samples, this->Interpolation());
        } catch (...) {
            this->ReportUnsuitable(samples, source);
            throw;
        }
        axes_ = std::move(axes);
        this->SetSamples(std::move(samples));
    }

  private:
    AXIS_SET<T, I, P> axes_;
};
