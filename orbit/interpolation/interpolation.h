/// \file interpolation.h
/// One-dimensional interpolation over support points of one type, sorted by abscissa: the base of every interpolator.
/// Arithmetic: double, for float points as well, so that a float interpolator errs by the rounding of its input and of
/// its result only. Outside the data: the outermost piece goes on (HERMITE_POLY alone ends the process instead).
/// Threads: queries are const, allocate nothing and take no lock; Create and the setters belong to one thread.

#pragma once

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/records.h"
#include "orbit/interpolation/interpolator.h"

/// @tparam T  type of abscissa and ordinate
/// @tparam P  support point: POINT<T>, or DPOINT<T> where the first derivative is given as well
template <class T, class P>
class INTERPOLATION {
  public:
    virtual ~INTERPOLATION() = default;

    /// Sets order and support point count (-1: leave it), then creates. Classes without these parameters ignore them.
    virtual void Create(const ARRAY<P>& points, int order, int support_point_count);
    /// Takes over the points and computes what the queries need.
    /// @param points  finite, sorted by abscissa; the first index may be any
    /// @throws ERROR_ARGUMENT for points or parameters that do not suit (logged first), ERROR_NO_MEMORY
    virtual void Create(const ARRAY<P>& points);

    /// -1 leaves the order unchanged; no effect in classes without an order.
    virtual void SetOrder(int order);
    /// -1 leaves the count unchanged; no effect in classes without it.
    virtual void SetSupportPointCount(int support_point_count);

    /// Parts of Evaluate.
    virtual T Value(T x) const;
    virtual T FirstDerivative(T x) const;
    virtual T SecondDerivative(T x) const;

    /// The polynomial coefficients from index 0, where the class has any; each class says to which variable they
    /// belong. One that T can not hold becomes 0 or the largest value.
    virtual ARRAY<T> GetCoeffs() const;

    /// Value and both derivatives at x in one evaluation.
    /// @throws ERROR_ARGUMENT (logged first) before a successful Create, and for an x so far outside the data that the
    /// result would overflow
    virtual void Evaluate(T x, T& value, T& first, T& second) const;

  protected:
    INTERPOLATION() = default;
    INTERPOLATION(const INTERPOLATION&) = default;
    INTERPOLATION(INTERPOLATION&&) noexcept = default;
    INTERPOLATION& operator=(const INTERPOLATION&) = default;
    INTERPOLATION& operator=(INTERPOLATION&&) noexcept = default;

    /// What does the work, in double.
    [[nodiscard]] virtual const INTERPOLATOR& Core() const = 0;
    [[nodiscard]] virtual INTERPOLATOR& Core() = 0;
};

/// An interpolation around a core of class C.
template <class T, class P, class C>
class INTERPOLATION_BY : public INTERPOLATION<T, P> {
  public:
    using CORE = C;

  protected:
    [[nodiscard]] const C& Core() const final { return core_; }
    [[nodiscard]] C& Core() final { return core_; }

  private:
    C core_;
};

extern template class INTERPOLATION<float, POINT<float>>;
extern template class INTERPOLATION<double, POINT<double>>;
extern template class INTERPOLATION<long double, POINT<long double>>;
extern template class INTERPOLATION<float, DPOINT<float>>;
extern template class INTERPOLATION<double, DPOINT<double>>;
extern template class INTERPOLATION<long double, DPOINT<long double>>;
