/// \file sub_array.h
/// A view of consecutive elements of an array, under indices of its own. It owns nothing: the array must outlive it and
/// must not be resized meanwhile.

#pragma once

#include "lib/baselib/containers/array.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"

template <class T>
class SUB_ARRAY {
  public:
    /// @param elements  indices of the array that the view covers
    /// @param first     index of the first of them in the view
    /// @throws ERROR_ARGUMENT when the range leaves the array
    SUB_ARRAY(ARRAY<T>& array, RANGE<int> elements, int first = 0) : range_{first, elements.count} {
        const long long offset = static_cast<long long>(elements.first) - array.First();
        if (elements.count < 0 || offset < 0 || offset + elements.count > array.Count()) {
            LogAndThrow<ERROR_ARGUMENT>("SUB_ARRAY: %d elements from index %d are not within the array", elements.count,
                                        elements.first);
        }
        elements_ = array.Data() + offset;
    }
    SUB_ARRAY(const SUB_ARRAY&) = default;
    /// Ambiguous between "show other elements" and "copy the elements", hence forbidden. @throws ERROR_NOT_IMPLEMENTED
    SUB_ARRAY& operator=(const SUB_ARRAY&) {
        Log() << LOGGING_LEVEL::ALARM << "never call: SUB_ARRAY<T>::operator=( const SUB_ARRAY< T >& )\n";
        throw ERROR_NOT_IMPLEMENTED();
    }

    T& operator[](int index) { return elements_[static_cast<std::ptrdiff_t>(index) - range_.first]; }
    const T& operator[](int index) const { return elements_[static_cast<std::ptrdiff_t>(index) - range_.first]; }

    int First() const { return range_.first; }
    int Count() const { return range_.count; }
    RANGE<int> Range() const { return range_; }
    T* begin() { return elements_; }
    T* end() { return elements_ + range_.count; }
    const T* begin() const { return elements_; }
    const T* end() const { return elements_ + range_.count; }

  private:
    RANGE<int> range_;
    T* elements_ = nullptr;
};
