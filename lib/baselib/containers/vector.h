/// \file vector.h
/// Mathematical vector of variable dimension: the storage. Its arithmetic lives in geometry/.

#pragma once

#include <algorithm>
#include <initializer_list>

#include "lib/baselib/containers/array.h"

template <class T>
class VECTOR {
  public:
    VECTOR() = default;
    /// A zero vector. @throws ERROR_NO_MEMORY; ERROR_ARGUMENT for a negative dimension
    explicit VECTOR(int dimension) : elements_(0, dimension) {}
    VECTOR(std::initializer_list<T> elements) : elements_(0, static_cast<int>(elements.size())) {
        std::copy(elements.begin(), elements.end(), elements_.begin());
    }

    /// @param index from 0
    T& operator[](int index) { return elements_[index]; }
    const T& operator[](int index) const { return elements_[index]; }

    int Dimension() const { return elements_.Count(); }
    T* begin() { return elements_.begin(); }
    T* end() { return elements_.end(); }
    const T* begin() const { return elements_.begin(); }
    const T* end() const { return elements_.end(); }

  private:
    ARRAY<T> elements_;
};
