/// \file orbit.h
/// The concrete orbit: a list of state vectors and one interpolator per axis. Where the vectors come from is the
/// business of the derived classes POOL_ORBIT and MDB_ORBIT.

#pragma once

#include <algorithm>
#include <array>
#include <typeinfo>
#include <vector>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/check_table.h"
#include "orbit/orbit_base.h"
#include "orbit/state_vectors.h"
#include "time/time_axis.h"

/// @tparam T  float or double: the coordinates and the interpolation's abscissa
/// @tparam S  time type of the state vectors: double, UNIVERSAL_TIME or MISSION_ELAPSED_TIME
/// @tparam I  interpolator of one axis
/// @tparam P  its support point: POINT<T>, or DPOINT<T> where the velocities enter the interpolation
template <class T, class S, class I, class P>
class ORBIT : public ORBIT_BASE {
  public:
    ORBIT_BASE& operator=(const ORBIT_BASE& aorbit) override;

    [[nodiscard]] VECTOR_3D<double> Position(double t_s) const override {
        return Ask(t_s, [](const I& axis, T t) { return axis.I::Value(t); });
    }
    [[nodiscard]] VECTOR_3D<double> Velocity(double t_s) const override {
        return Ask(t_s, [](const I& axis, T t) { return axis.I::FirstDerivative(t); });
    }
    [[nodiscard]] VECTOR_3D<double> Acceleration(double t_s) const override {
        return Ask(t_s, [](const I& axis, T t) { return axis.I::SecondDerivative(t); });
    }
    [[nodiscard]] ORBIT_STATE State(double t_s) const override;

    [[nodiscard]] double FirstTime() const override;
    [[nodiscard]] double LastTime() const override;
    [[nodiscard]] int StateVectorCount() const override { return static_cast<int>(vectors_.size()); }

    void SetReferenceTime(const ANY_TIME& time) override;
    [[nodiscard]] ANY_TIME ReferenceTime() const override { return reference_; }

    void SavePolynomial(const std::string& file_name) const override;

  protected:
    ORBIT() = default;
    ORBIT(const ORBIT&) = default;

    void CopyFrom(const ORBIT& other);

    /// Checks the vectors, creates the three interpolators and only then takes both over.
    /// @throws ERROR_EXCEPTION after a line that names file and key
    void TakeOver(STATE_VECTORS<T, S> vectors, const STATE_VECTOR_SOURCE& source);

  private:
    using AXES = std::array<I, 3>;

    [[nodiscard]] AXES CreateAxes(const STATE_VECTORS<T, S>& vectors, const std::vector<T>& abscissae) const;
    [[nodiscard]] T AbscissaOf(double t_s) const;

    template <class QUESTION>
    [[nodiscard]] VECTOR_3D<double> Ask(double t_s, QUESTION question) const {
        const T t = AbscissaOf(t_s);
        return {question(axes_[0], t), question(axes_[1], t), question(axes_[2], t)};
    }

    S reference_{};
    STATE_VECTORS<T, S> vectors_;
    std::vector<T> abscissae_;  ///< seconds since the reference time, one per state vector
    AXES axes_;                 ///< x, y, z
};

template <class T, class S, class I, class P>
ORBIT_BASE& ORBIT<T, S, I, P>::operator=(const ORBIT_BASE& aorbit) {
    if (typeid(*this) != typeid(aorbit)) {
        RefuseAssignment("virtual ORBIT_BASE& ORBIT<T,S,I,P>::operator=( const ORBIT_BASE& aorbit )");
    }
    CopyFrom(static_cast<const ORBIT&>(aorbit));
    return *this;
}

template <class T, class S, class I, class P>
void ORBIT<T, S, I, P>::CopyFrom(const ORBIT& other) {
    if (this == &other) return;
    CopySetupFrom(other);
    reference_ = other.reference_;
    vectors_ = other.vectors_;
    abscissae_ = other.abscissae_;
    axes_ = other.axes_;
}

template <class T, class S, class I, class P>
T ORBIT<T, S, I, P>::AbscissaOf(double t_s) const {
    if (abscissae_.empty()) RefuseCoreObject();
    if constexpr (std::is_same_v<T, float>) {
        constexpr double kFarOutside_s = 1e30;  // the interpolators refuse it, the conversion to float would trap
        return static_cast<float>(std::clamp(t_s, -kFarOutside_s, kFarOutside_s));
    } else {
        return t_s;
    }
}

template <class T, class S, class I, class P>
ORBIT_STATE ORBIT<T, S, I, P>::State(double t_s) const {
    const T t = AbscissaOf(t_s);
    std::array<T, 3> p;
    std::array<T, 3> v;
    std::array<T, 3> a;
    for (size_t i = 0; i < axes_.size(); ++i) axes_[i].I::Evaluate(t, p[i], v[i], a[i]);
    return {{p[0], p[1], p[2]}, {v[0], v[1], v[2]}, {a[0], a[1], a[2]}};
}

template <class T, class S, class I, class P>
double ORBIT<T, S, I, P>::FirstTime() const {
    if (abscissae_.empty()) RefuseCoreObject();
    return abscissae_.front();
}

template <class T, class S, class I, class P>
double ORBIT<T, S, I, P>::LastTime() const {
    if (abscissae_.empty()) RefuseCoreObject();
    return abscissae_.back();
}

template <class T, class S, class I, class P>
void ORBIT<T, S, I, P>::SetReferenceTime(const ANY_TIME& time) {
    const S* const own_type = std::get_if<S>(&time);
    if (own_type == nullptr) {
        Log().Message(LOGGING_LEVEL::ALARM, "ORBIT: the reference time %s is %s, but the times of %s are %s",
                      TextOf(time).c_str(), KindOf(time), TextOf(TypeId()), TIME_AXIS<S>::kName);
        throw ERROR_ARGUMENT();
    }
    reference_ = *own_type;
}

template <class T, class S, class I, class P>
void ORBIT<T, S, I, P>::TakeOver(STATE_VECTORS<T, S> vectors, const STATE_VECTOR_SOURCE& source) {
    std::vector<T> abscissae = CheckedAbscissae(vectors, reference_, Interpolation(), source);
    try {
        AXES axes = CreateAxes(vectors, abscissae);
        axes_ = std::move(axes);
    } catch (...) {
        Log().Message(
            LOGGING_LEVEL::ALARM, "%s: the interpolation \"%s\" does not suit the %zu state vectors at key \"%s\"",
            source.file.c_str(), Configuration().interpolation.c_str(), vectors.size(), source.time_key.c_str());
        throw;
    }
    vectors_ = std::move(vectors);
    abscissae_ = std::move(abscissae);
}

template <class T, class S, class I, class P>
typename ORBIT<T, S, I, P>::AXES ORBIT<T, S, I, P>::CreateAxes(const STATE_VECTORS<T, S>& vectors,
                                                               const std::vector<T>& abscissae) const {
    constexpr T VECTOR_3D<T>::*kAxes[] = {&VECTOR_3D<T>::x, &VECTOR_3D<T>::y, &VECTOR_3D<T>::z};
    AXES axes;
    ARRAY<P> points(0, static_cast<int>(vectors.size()));
    for (size_t axis = 0; axis < axes.size(); ++axis) {
        for (size_t i = 0; i < vectors.size(); ++i) {
            P& point = points.Data()[i];
            point.x = abscissae[i];
            point.y = vectors[i].position_m.*kAxes[axis];
            if constexpr (requires { point.dy; }) point.dy = vectors[i].velocity_m_s.*kAxes[axis];
        }
        axes[axis].I::Create(points, Interpolation().poly_fit_order, Interpolation().support_point_count);
    }
    return axes;
}

template <class T, class S, class I, class P>
void ORBIT<T, S, I, P>::SavePolynomial(const std::string& file_name) const {
    CHECK_TABLE table(file_name);
    for (size_t i = 0; i < vectors_.size(); ++i) {
        const double t_s = abscissae_[i];
        const VECTOR_3D<T>& given = vectors_[i].position_m;
        table.AddLine(t_s, {given.x, given.y, given.z}, Position(t_s));
    }
    table.Close();
}
