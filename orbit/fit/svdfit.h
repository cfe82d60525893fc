/// \file svdfit.h
/// Linear least squares by singular value decomposition.
/// Singular values below 1e-5 of the largest are taken as zero: the fit is then the one of least norm, and poorer than
/// its order promises. So scale the abscissa to -1..1 first; with seconds of day the powers drown each other.
/// Threads: one object per thread. A refit of the same size allocates nothing, and nothing here writes to the log.

#pragma once

#include <span>

#include "orbit/fit/basis_functions.h"

/// @tparam F  basis functions, see basis_functions.h
template <class T, class F>
class SVDFIT {
  public:
    /// A singular value below this part of the largest is dropped.
    static constexpr T kThreshold = T(1e-5);

    SVDFIT() = default;
    SVDFIT(const SVDFIT&) = delete;
    SVDFIT& operator=(const SVDFIT&) = delete;
    ~SVDFIT() { Release(); }

    /// Makes room for a fit of data_count points and coefficient_count coefficients; only a change of either allocates.
    /// Out of memory ends the process (see nr_allocators.h).
    void Resize(int data_count, int coefficient_count);

    /// Fits y(x) = sum of a_j basis_j(x).
    /// @param x, y, sigma   as many elements each, finite; sigma (standard deviation of y) not zero
    /// @param coefficients  receives a_j; its size is the number of basis functions, at least 1
    /// @return chi-square: the sum of ((y - fit) / sigma)^2
    T Fit(std::span<const T> x, std::span<const T> y, std::span<const T> sigma, std::span<T> coefficients);

    /// Of the last fit: chi-square, and the number of singular values dropped.
    T ChiSquare() const { return chi_square_; }
    int DroppedCount() const { return dropped_count_; }

  private:
    void Release();
    void FillDesignMatrix(std::span<const T> x, std::span<const T> y, std::span<const T> sigma);
    void DropSmallSingularValues();
    T ChiSquareOf(std::span<const T> x, std::span<const T> y, std::span<const T> sigma);

    // All addressed from index 1.
    int data_count_ = 0;
    int coefficient_count_ = 0;
    int dropped_count_ = 0;
    T chi_square_ = 0;
    T** u_ = nullptr;     ///< data x coefficients
    T** v_ = nullptr;     ///< coefficients x coefficients
    T* w_ = nullptr;      ///< singular values
    T* a_ = nullptr;      ///< coefficients
    T* b_ = nullptr;      ///< y / sigma
    T* basis_ = nullptr;  ///< coefficients; basis functions at one x, then work space
};

extern template class SVDFIT<float, POLYNOM_FUNCTION<float>>;
extern template class SVDFIT<double, POLYNOM_FUNCTION<double>>;
extern template class SVDFIT<long double, POLYNOM_FUNCTION<long double>>;
extern template class SVDFIT<float, CHEBY_POLY_FUNCTION<float>>;
extern template class SVDFIT<double, CHEBY_POLY_FUNCTION<double>>;
