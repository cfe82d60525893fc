/// \file array.h
/// One-dimensional array with a first index: elements first .. first + count - 1.
/// Storage: 32-byte aligned, value-initialised (see mem_alloc_implementation.h); an array may also take over elements
/// that came from array new.
/// Threads: a plain value; const access is safe from many threads.

#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <new>
#include <utility>

#include "lib/baselib/containers/core_object.h"
#include "lib/baselib/containers/records.h"
#include "lib/baselib/mem_allocation/mem_alloc_implementation.h"

template <class T>
class ARRAY {
  public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    /// What Resize returns.
    enum RESIZE_CODE : int { kDone = 0, kNoMemory = 2, kNegativeLength = 3 };

    ARRAY() = default;

    /// @throws ERROR_NO_MEMORY; ERROR_ARGUMENT for a negative count
    ARRAY(int first, int count) {
        const int code = Resize({first, count});
        if (code == kNegativeLength) FailElementCount("ARRAY", count);
        if (code == kNoMemory) FailCoreObject();
    }

    /// Takes over elements from array new; they are released by array delete.
    ARRAY(T* elements_of_array_new, RANGE<int> range)
        : range_(range), elements_(elements_of_array_new), from_array_new_(true) {}

    /// @throws const char* "ARRAY : can not copy array" when there is no memory
    ARRAY(const ARRAY& other) { CopyFrom(other); }
    ARRAY(ARRAY&& other) noexcept { Swap(other); }
    /// @throws as the copy constructor; the array then keeps its contents
    ARRAY& operator=(const ARRAY& other) {
        if (this != &other) {
            ARRAY copy(other);
            Swap(copy);
        }
        return *this;
    }
    ARRAY& operator=(ARRAY&& other) noexcept {
        ARRAY taken(std::move(other));
        Swap(taken);
        return *this;
    }
    ~ARRAY() { Release(); }

    /// Gives the array another range. The elements of both lengths are kept, counted from the first one.
    /// Never throws; every caller checks the code and logs "can not change array size: out of memory" for kNoMemory.
    /// @return kDone (0), also for the range that it has; kNoMemory (2) and kNegativeLength (3) leave the array as it
    /// was
    [[nodiscard]] int Resize(RANGE<int> range) noexcept {
        if (range == range_) return kDone;
        if (range.count < 0) return kNegativeLength;
        T* const elements = MEM_ALLOCATION::Allocate<T>(range.count);
        if (elements == nullptr) return kNoMemory;
        std::move(elements_, elements_ + std::min(range.count, range_.count), elements);
        Release();
        range_ = range;
        elements_ = elements;
        from_array_new_ = false;
        return kDone;
    }

    /// @param index first index .. first index + count - 1; not checked in a release build
    T& operator[](int index) { return elements_[Offset(index)]; }
    const T& operator[](int index) const { return elements_[Offset(index)]; }

    int First() const { return range_.first; }
    int Count() const { return range_.count; }
    RANGE<int> Range() const { return range_; }
    T* Data() { return elements_; }
    const T* Data() const { return elements_; }
    T* begin() { return elements_; }
    T* end() { return elements_ + range_.count; }
    std::size_t size() const { return static_cast<std::size_t>(range_.count); }
    const T* begin() const { return elements_; }
    const T* end() const { return elements_ + range_.count; }

  private:
    std::ptrdiff_t Offset(int index) const {
        const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(index) - range_.first;
        assert(offset >= 0 && offset < range_.count);
        return offset;
    }

    void CopyFrom(const ARRAY& other) {
        if (Resize(other.range_) != kDone) throw "ARRAY : can not copy array";
        try {
            std::copy(other.begin(), other.end(), elements_);
        } catch (const std::bad_alloc&) {
            Release();
            throw "ARRAY : can not copy array";
        } catch (...) {
            Release();
            throw;
        }
    }

    void Release() noexcept {
        if (from_array_new_) {
            delete[] elements_;
        } else {
            MEM_ALLOCATION::Free(elements_);
        }
        elements_ = nullptr;
    }

    void Swap(ARRAY& other) noexcept {
        std::swap(range_, other.range_);
        std::swap(elements_, other.elements_);
        std::swap(from_array_new_, other.from_array_new_);
    }

    RANGE<int> range_{};
    T* elements_ = nullptr;
    bool from_array_new_ = false;  ///< array delete releases the elements, else the aligned allocator
};
