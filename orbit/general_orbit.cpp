#include "orbit/general_orbit.h"

#include "orbit/orbit_factory.h"

namespace {

template <class V>
V MakeVector(const VECTOR_3D<double>& v);

template <>
VECTOR_3D<double> MakeVector(const VECTOR_3D<double>& v) {
    return v;
}

template <>
VECTOR<double> MakeVector(const VECTOR_3D<double>& v) {
    return {v.x, v.y, v.z};
}

}  // namespace

template <class T, class V>
GENERAL_ORBIT<T, V>::GENERAL_ORBIT(const std::string& orbit_type, const std::string& interpolation)
    : core_(CreateOrbit(OrbitTypeIdFromText(orbit_type), ParseInterpolationText(interpolation))) {}

template <class T, class V>
GENERAL_ORBIT<T, V>::GENERAL_ORBIT(const GENERAL_ORBIT& other)
    : core_(other.core_ == nullptr ? nullptr : other.core_->Clone()) {}

template <class T, class V>
GENERAL_ORBIT<T, V>& GENERAL_ORBIT<T, V>::operator=(const GENERAL_ORBIT& agen_orbit) {
    const ORBIT_BASE& source = agen_orbit.Core();
    if (core_ == nullptr) {
        core_ = source.Clone();
    } else if (typeid(*core_) != typeid(source)) {
        RefuseAssignment("virtual GENERAL_ORBIT<T>& operator=( const GENERAL_ORBIT<T>& agen_orbit )");
    } else {
        *core_ = source;
    }
    return *this;
}

template <class T, class V>
void GENERAL_ORBIT<T, V>::ReadFromParameterPool(PARAMETER_POOL& pool) {
    core_ = ReadOrbit(pool);
}

template <class T, class V>
void GENERAL_ORBIT<T, V>::SetReferenceTime(const std::string& text) {
    if (core_ == nullptr) RefuseCoreObject();
    core_->SetReferenceTime(ReferenceTimeFromText(text));
}

template <class T, class V>
V GENERAL_ORBIT<T, V>::Position(T t_s) const {
    return MakeVector<V>(Core().Position(t_s));
}

template <class T, class V>
V GENERAL_ORBIT<T, V>::Velocity(T t_s) const {
    return MakeVector<V>(Core().Velocity(t_s));
}

template <class T, class V>
V GENERAL_ORBIT<T, V>::Acceleration(T t_s) const {
    return MakeVector<V>(Core().Acceleration(t_s));
}

template class GENERAL_ORBIT<double, VECTOR_3D<double>>;
template class GENERAL_ORBIT<double, VECTOR<double>>;
