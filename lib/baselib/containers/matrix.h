/// \file matrix.h
/// Two-dimensional matrix, rows top first: one aligned block of rows x columns elements, reached through row links.
/// Threads: a plain value; const access is safe from many threads.

#pragma once

#include <algorithm>
#include <cassert>
#include <memory>
#include <utility>

#include "lib/baselib/containers/array.h"

template <class T>
class MATRIX {
  public:
    /// First element of one row.
    struct POINTER_VECTOR_LINK_T {
        T* first = nullptr;
    };

    MATRIX() = default;

    /// @throws ERROR_NO_MEMORY; ERROR_ARGUMENT for a negative number
    MATRIX(int rows, int columns) {
        const int code = Resize(rows, columns);
        if (code == ARRAY<T>::kNegativeLength) FailElementCount("MATRIX", std::min(rows, columns));
        if (code == ARRAY<T>::kNoMemory) FailCoreObject();
    }

    /// @throws ERROR_NO_MEMORY
    MATRIX(const MATRIX& other) : MATRIX(other.Rows(), other.Columns()) {
        std::copy(other.block_.get(), other.block_.get() + other.Size(), block_.get());
    }
    MATRIX(MATRIX&& other) noexcept { Swap(other); }
    MATRIX& operator=(const MATRIX& other) {
        if (this != &other) {
            MATRIX copy(other);
            Swap(copy);
        }
        return *this;
    }
    MATRIX& operator=(MATRIX&& other) noexcept {
        MATRIX taken(std::move(other));
        Swap(taken);
        return *this;
    }
    ~MATRIX() = default;

    /// Keeps the elements that lie in both shapes, as row and column. Never throws.
    /// @return the codes of ARRAY::Resize; any code but 0 leaves the matrix as it was
    [[nodiscard]] int Resize(int rows, int columns) noexcept {
        if (rows < 0 || columns < 0) return ARRAY<T>::kNegativeLength;
        if (rows == Rows() && columns == Columns()) return ARRAY<T>::kDone;
        const long long size = static_cast<long long>(rows) * columns;
        BLOCK block(MEM_ALLOCATION::Allocate<T>(size));
        if (block == nullptr) return ARRAY<T>::kNoMemory;
        ARRAY<POINTER_VECTOR_LINK_T> links;
        if (links.Resize({0, rows}) != links.kDone) return ARRAY<T>::kNoMemory;
        for (int row = 0; row < rows; ++row) {
            links[row].first = block.get() + static_cast<long long>(row) * columns;
        }
        for (int row = 0; row < std::min(rows, Rows()); ++row) {
            std::move((*this)[row], (*this)[row] + std::min(columns, columns_), links[row].first);
        }
        links_ = std::move(links);
        block_ = std::move(block);
        columns_ = columns;
        return ARRAY<T>::kDone;
    }

    /// @param row from 0; not checked in a release build
    T* operator[](int row) { return links_[row].first; }
    const T* operator[](int row) const { return links_[row].first; }

    int Rows() const { return links_.Count(); }
    int Columns() const { return columns_; }
    long long Size() const { return static_cast<long long>(Rows()) * columns_; }
    /// All elements, row by row.
    T* Data() { return block_.get(); }
    const T* Data() const { return block_.get(); }

  private:
    struct RELEASE {
        void operator()(T* elements) const noexcept { MEM_ALLOCATION::Free(elements); }
    };
    using BLOCK = std::unique_ptr<T, RELEASE>;

    void Swap(MATRIX& other) noexcept {
        std::swap(links_, other.links_);
        std::swap(block_, other.block_);
        std::swap(columns_, other.columns_);
    }

    ARRAY<POINTER_VECTOR_LINK_T> links_;
    BLOCK block_;
    int columns_ = 0;
};
