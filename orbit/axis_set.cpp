#include "orbit/axis_set.h"

#include "lib/baselib/containers/array.h"

template <class T, class I, class P>
AXIS_SET<T, I, P>::AXIS_SET() = default;
template <class T, class I, class P>
AXIS_SET<T, I, P>::AXIS_SET(const AXIS_SET&) = default;
template <class T, class I, class P>
AXIS_SET<T, I, P>::AXIS_SET(AXIS_SET&&) noexcept = default;
template <class T, class I, class P>
AXIS_SET<T, I, P>& AXIS_SET<T, I, P>::operator=(const AXIS_SET&) = default;
template <class T, class I, class P>
AXIS_SET<T, I, P>& AXIS_SET<T, I, P>::operator=(AXIS_SET&&) noexcept = default;
template <class T, class I, class P>
AXIS_SET<T, I, P>::~AXIS_SET() = default;

template <class T, class I, class P>
void AXIS_SET<T, I, P>::Create(const std::vector<ORBIT_SAMPLE<T>>& samples, const INTERPOLATION_REQUEST& request) {
    constexpr T VECTOR_3D<T>::*kCoordinates[] = {&VECTOR_3D<T>::x, &VECTOR_3D<T>::y, &VECTOR_3D<T>::z};
    ARRAY<P> points(0, static_cast<int>(samples.size()));
    for (size_t axis = 0; axis < axes_.size(); ++axis) {
        for (size_t i = 0; i < samples.size(); ++i) {
            P& point = points.Data()[i];
            point.x = samples[i].t_s;
            point.y = samples[i].position_m.*kCoordinates[axis];
            if constexpr (requires { point.dy; }) point.dy = samples[i].velocity_m_s.*kCoordinates[axis];
        }
        axes_[axis].I::Create(points, request.poly_fit_order, request.support_point_count);
    }
}

template <class T, class I, class P>
ORBIT_STATE AXIS_SET<T, I, P>::State(T t_s) const {
    std::array<T, 3> p;
    std::array<T, 3> v;
    std::array<T, 3> a;
    for (size_t i = 0; i < axes_.size(); ++i) axes_[i].I::Evaluate(t_s, p[i], v[i], a[i]);
    return {{p[0], p[1], p[2]}, {v[0], v[1], v[2]}, {a[0], a[1], a[2]}};
}

template class AXIS_SET<float, POLYNOM<float>, POINT<float>>;
template class AXIS_SET<float, POLYNOM_FIT<float>, POINT<float>>;
template class AXIS_SET<float, SPLINE<float>, POINT<float>>;
template class AXIS_SET<float, LOCAL<float, POLYNOM<float>>, POINT<float>>;
template class AXIS_SET<float, LOCAL<float, POLYNOM_FIT<float>>, POINT<float>>;
template class AXIS_SET<float, CHEBY_POLY<float>, POINT<float>>;
template class AXIS_SET<float, LOCAL<float, CHEBY_POLY<float>>, POINT<float>>;
template class AXIS_SET<float, HERMITE_POLY<float>, DPOINT<float>>;
template class AXIS_SET<float, LOCAL_HERMITE<float>, DPOINT<float>>;
template class AXIS_SET<float, EVERETT<float>, POINT<float>>;
template class AXIS_SET<double, POLYNOM<double>, POINT<double>>;
template class AXIS_SET<double, POLYNOM_FIT<double>, POINT<double>>;
template class AXIS_SET<double, SPLINE<double>, POINT<double>>;
template class AXIS_SET<double, LOCAL<double, POLYNOM<double>>, POINT<double>>;
template class AXIS_SET<double, LOCAL<double, POLYNOM_FIT<double>>, POINT<double>>;
template class AXIS_SET<double, CHEBY_POLY<double>, POINT<double>>;
template class AXIS_SET<double, LOCAL<double, CHEBY_POLY<double>>, POINT<double>>;
template class AXIS_SET<double, HERMITE_POLY<double>, DPOINT<double>>;
template class AXIS_SET<double, LOCAL_HERMITE<double>, DPOINT<double>>;
template class AXIS_SET<double, EVERETT<double>, POINT<double>>;
