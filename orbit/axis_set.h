/// \file axis_set.h
/// The interpolation of an orbit: one interpolator per coordinate axis.
/// Threads: queries are const, take no lock and allocate nothing.

#pragma once

#include <array>
#include <vector>

#include "orbit/cheby_poly.h"
#include "orbit/everett.h"
#include "orbit/hermite_poly.h"
#include "orbit/interpolation_request.h"
#include "orbit/local_interpolation.h"
#include "orbit/polynom.h"
#include "orbit/polynom_fit.h"
#include "orbit/spline.h"
#include "orbit/state_vector.h"

/// @tparam T  float or double: the coordinates and the abscissa
/// @tparam I  interpolator of one axis
/// @tparam P  its support point: POINT<T>, or DPOINT<T> where the velocities enter the interpolation
template <class T, class I, class P>
class AXIS_SET {
  public:
    // Out of line: 78 concrete orbits copy and destroy 20 kinds of axes.
    AXIS_SET();
    AXIS_SET(const AXIS_SET&);
    AXIS_SET(AXIS_SET&&) noexcept;
    AXIS_SET& operator=(const AXIS_SET&);
    AXIS_SET& operator=(AXIS_SET&&) noexcept;
    ~AXIS_SET();

    /// @throws ERROR_EXCEPTION of the interpolator, after logging
    void Create(const std::vector<ORBIT_SAMPLE<T>>& samples, const INTERPOLATION_REQUEST& request);

    [[nodiscard]] ORBIT_STATE State(T t_s) const;

  private:
    std::array<I, 3> axes_;  ///< x, y, z
};

template <class T, class I>
using LOCAL = LOCAL_INTERPOLATION<T, I, POINT<T>>;
template <class T>
using LOCAL_HERMITE = LOCAL_INTERPOLATION<T, HERMITE_POLY<T>, DPOINT<T>>;

extern template class AXIS_SET<float, POLYNOM<float>, POINT<float>>;
extern template class AXIS_SET<float, POLYNOM_FIT<float>, POINT<float>>;
extern template class AXIS_SET<float, SPLINE<float>, POINT<float>>;
extern template class AXIS_SET<float, LOCAL<float, POLYNOM<float>>, POINT<float>>;
extern template class AXIS_SET<float, LOCAL<float, POLYNOM_FIT<float>>, POINT<float>>;
extern template class AXIS_SET<float, CHEBY_POLY<float>, POINT<float>>;
extern template class AXIS_SET<float, LOCAL<float, CHEBY_POLY<float>>, POINT<float>>;
extern template class AXIS_SET<float, HERMITE_POLY<float>, DPOINT<float>>;
extern template class AXIS_SET<float, LOCAL_HERMITE<float>, DPOINT<float>>;
extern template class AXIS_SET<float, EVERETT<float>, POINT<float>>;
extern template class AXIS_SET<double, POLYNOM<double>, POINT<double>>;
extern template class AXIS_SET<double, POLYNOM_FIT<double>, POINT<double>>;
extern template class AXIS_SET<double, SPLINE<double>, POINT<double>>;
extern template class AXIS_SET<double, LOCAL<double, POLYNOM<double>>, POINT<double>>;
extern template class AXIS_SET<double, LOCAL<double, POLYNOM_FIT<double>>, POINT<double>>;
extern template class AXIS_SET<double, CHEBY_POLY<double>, POINT<double>>;
extern template class AXIS_SET<double, LOCAL<double, CHEBY_POLY<double>>, POINT<double>>;
extern template class AXIS_SET<double, HERMITE_POLY<double>, DPOINT<double>>;
extern template class AXIS_SET<double, LOCAL_HERMITE<double>, DPOINT<double>>;
extern template class AXIS_SET<double, EVERETT<double>, POINT<double>>;
