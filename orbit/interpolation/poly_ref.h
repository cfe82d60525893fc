/// \file poly_ref.h
/// One piece of a local interpolation.

#pragma once

#include <memory>

/// @tparam T  abscissa
/// @tparam I  interpolator of the piece
/// @tparam P  the list of its support points
template <class T, class I, class P>
class POLY_REF {
  public:
    /// @param index_start  first point of the piece, in the caller's own counting
    /// @param index_stop   last point of the piece
    /// @param start, stop  the abscissae for which the piece is responsible
    POLY_REF(int index_start, int index_stop, T start, T stop)
        : index_start_(index_start), index_stop_(index_stop), start_(start), stop_(stop) {}

    /// Creates the interpolator from the piece's own points.
    /// @param interpolator  with its parameters set
    /// @param points        all support points of the local interpolation
    void Create(std::unique_ptr<I> interpolator, const P& points) {
        interpolator->Create(points.Part(index_start_ - points.first_index, index_stop_ - index_start_ + 1));
        interpolator_ = std::move(interpolator);
    }

    [[nodiscard]] const I& Interpolator() const { return *interpolator_; }
    [[nodiscard]] int IndexStart() const { return index_start_; }
    [[nodiscard]] int IndexStop() const { return index_stop_; }
    [[nodiscard]] T Start() const { return start_; }
    [[nodiscard]] T Stop() const { return stop_; }

  private:
    int index_start_;
    int index_stop_;
    T start_;
    T stop_;
    std::unique_ptr<I> interpolator_;
};
