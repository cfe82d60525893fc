/// \file poly_ref.h
/// One piece of a local interpolation.

#pragma once

#include "lib/baselib/containers/array.h"

/// @tparam T  abscissa
/// @tparam I  interpolator of the piece
/// @tparam P  its support points
template <class T, class I, class P>
class POLY_REF {
  public:
    /// @param index_start  first point of the piece, in the array's own indices
    /// @param index_stop   last point of the piece
    /// @param start, stop  the abscissae for which the piece is responsible
    POLY_REF(int index_start, int index_stop, T start, T stop)
        : index_start_(index_start), index_stop_(index_stop), start_(start), stop_(stop) {}

    /// Creates the interpolator from the piece's own points.
    /// @param points  all support points of the local interpolation
    void Create(const ARRAY<P>& points) {
        ARRAY<P> own(index_start_, index_stop_ - index_start_ + 1);
        for (int index = index_start_; index <= index_stop_; ++index) own[index] = points[index];
        interpolator_.Create(own);
    }

    I& Interpolator() { return interpolator_; }
    const I& Interpolator() const { return interpolator_; }
    int IndexStart() const { return index_start_; }
    int IndexStop() const { return index_stop_; }
    T Start() const { return start_; }
    T Stop() const { return stop_; }

  private:
    int index_start_;
    int index_stop_;
    T start_;
    T stop_;
    I interpolator_;
};
