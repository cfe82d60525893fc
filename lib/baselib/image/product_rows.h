/// \file product_rows.h
/// Rows that are made just before they are written: a buffer of them stays in the processor's cache.

#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "lib/baselib/image/product_file.h"

/// Bytes that a core's second-level cache holds beside what the rows are made from.
inline constexpr long long kProductBufferBytes = 256 << 10;

/// Writes rows first_row .. end_row - 1 of a product of 32-bit reals.
/// @param make_row  called as make_row(row, float* pixels) for each row, in order
/// @throws as PRODUCT_FILE::WriteRows, and what make_row throws
template <class MAKE_ROW>
void WriteRowsMade(PRODUCT_FILE& file, long long first_row, long long end_row, long long columns,
                   const MAKE_ROW& make_row) {
    const long long row_bytes = std::max<long long>(columns * static_cast<long long>(sizeof(float)), 1);
    const long long rows_per_write =
        std::clamp(kProductBufferBytes / row_bytes, 1LL, std::max(end_row - first_row, 1LL));
    std::vector<float> buffer(static_cast<std::size_t>(rows_per_write * columns));
    for (long long first = first_row; first < end_row; first += rows_per_write) {
        const long long rows = std::min(rows_per_write, end_row - first);
        for (long long row = 0; row < rows; ++row) make_row(first + row, buffer.data() + row * columns);
        file.WriteRows(first, rows, buffer.data());
    }
}
