/// \file grid_view.h
/// A grid of pixels that belongs to somebody else: where it begins, how far its rows lie apart, how large it is.
/// Rows are counted as in the whole grid: a view of a band of lines begins at first_row, so that an index means the
/// same place whichever part of the grid is there. Columns begin at 0. Indices are not checked.

#pragma once

#include <cstddef>
#include <type_traits>

#include "lib/baselib/image/mem_mgr.h"

template <class T>
struct GRID_VIEW {
    T* data = nullptr;              ///< column 0 of row first_row; nullptr: there is no grid
    std::ptrdiff_t row_stride = 0;  ///< in elements
    int rows = 0;
    int columns = 0;
    int first_row = 0;

    [[nodiscard]] [[gnu::always_inline]] T* operator[](int row) const { return data + (row - first_row) * row_stride; }
    /// The first row behind the view.
    [[nodiscard]] int EndRow() const { return first_row + rows; }
    explicit operator bool() const { return data != nullptr; }

    /// Its rows first .. end - 1, all of which it has.
    [[nodiscard]] GRID_VIEW Rows(int first, int end) const {
        return {(*this)[first], row_stride, end - first, columns, first};
    }

    /// The same grid, for readers.
    operator GRID_VIEW<const T>() const requires(!std::is_const_v<T>) {
        return {data, row_stride, rows, columns, first_row};
    }
};

/// The whole of an image whose rows and columns an int counts; valid until the image is freed or replaced.
/// @throws as MEM_MGR::GetNumRecMatrix
template <class T>
[[nodiscard]] GRID_VIEW<T> ViewOf(MEM_MGR& image) {
    (void)image.GetNumRecMatrix<T>();  // refuses pixels of another type
    T* const first = reinterpret_cast<T*>(image.PixelAddress(image.FirstColumn(), image.FirstRow()));
    return {first, static_cast<std::ptrdiff_t>(image.Columns()), static_cast<int>(image.Rows()),
            static_cast<int>(image.Columns()), static_cast<int>(image.FirstRow())};
}
