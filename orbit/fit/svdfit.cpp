#include "orbit/fit/svdfit.h"

#include <algorithm>

#include "orbit/fit/nr_allocators.h"
#include "orbit/fit/svdcmp.h"

using NUMERICS::free_matrix;
using NUMERICS::free_vector;

template <class T, class F>
void SVDFIT<T, F>::Resize(int data_count, int coefficient_count) {
    if (data_count == data_count_ && coefficient_count == coefficient_count_) return;
    Release();
    data_count_ = data_count;
    coefficient_count_ = coefficient_count;
    u_ = NUMERICS::matrix<T>(1, data_count, 1, coefficient_count);
    v_ = NUMERICS::matrix<T>(1, coefficient_count, 1, coefficient_count);
    w_ = NUMERICS::vector<T>(1, coefficient_count);
    a_ = NUMERICS::vector<T>(1, coefficient_count);
    b_ = NUMERICS::vector<T>(1, data_count);
    basis_ = NUMERICS::vector<T>(1, coefficient_count);
}

template <class T, class F>
void SVDFIT<T, F>::Release() {
    free_matrix(u_, 1, data_count_, 1, coefficient_count_);
    free_matrix(v_, 1, coefficient_count_, 1, coefficient_count_);
    free_vector(w_, 1, coefficient_count_);
    free_vector(a_, 1, coefficient_count_);
    free_vector(b_, 1, data_count_);
    free_vector(basis_, 1, coefficient_count_);
}

template <class T, class F>
T SVDFIT<T, F>::Fit(std::span<const T> x, std::span<const T> y, std::span<const T> sigma, std::span<T> coefficients) {
    Resize(static_cast<int>(x.size()), static_cast<int>(coefficients.size()));
    FillDesignMatrix(x, y, sigma);
    NUMERICS::svdcmp(u_, data_count_, coefficient_count_, w_, v_, basis_);
    DropSmallSingularValues();
    NUMERICS::svbksb(u_, w_, v_, data_count_, coefficient_count_, b_, a_, basis_);
    std::copy(a_ + 1, a_ + 1 + coefficient_count_, coefficients.begin());
    return chi_square_ = ChiSquareOf(x, y, sigma);
}

template <class T, class F>
void SVDFIT<T, F>::FillDesignMatrix(std::span<const T> x, std::span<const T> y, std::span<const T> sigma) {
    for (int i = 1; i <= data_count_; ++i) {
        const auto point = static_cast<size_t>(i - 1);
        const T weight = 1 / sigma[point];
        F::Fill(x[point], u_[i], coefficient_count_);
        for (int j = 1; j <= coefficient_count_; ++j) u_[i][j] *= weight;
        b_[i] = y[point] * weight;
    }
}

template <class T, class F>
void SVDFIT<T, F>::DropSmallSingularValues() {
    const T threshold = kThreshold * *std::max_element(w_ + 1, w_ + 1 + coefficient_count_);
    dropped_count_ = 0;
    for (int j = 1; j <= coefficient_count_; ++j) {
        if (w_[j] >= threshold && w_[j] > 0) continue;
        w_[j] = 0;
        ++dropped_count_;
    }
}

template <class T, class F>
T SVDFIT<T, F>::ChiSquareOf(std::span<const T> x, std::span<const T> y, std::span<const T> sigma) {
    T sum = 0;
    for (size_t point = 0; point < x.size(); ++point) {
        F::Fill(x[point], basis_, coefficient_count_);
        T fitted = 0;
        for (int j = 1; j <= coefficient_count_; ++j) fitted += a_[j] * basis_[j];
        const T deviation = (y[point] - fitted) / sigma[point];
        sum += deviation * deviation;
    }
    return sum;
}

template class SVDFIT<float, POLYNOM_FUNCTION<float>>;
template class SVDFIT<double, POLYNOM_FUNCTION<double>>;
template class SVDFIT<long double, POLYNOM_FUNCTION<long double>>;
template class SVDFIT<float, CHEBY_POLY_FUNCTION<float>>;
template class SVDFIT<double, CHEBY_POLY_FUNCTION<double>>;
