/// \file row_blocks.h
/// How a range of rows is cut into contiguous blocks, one per thread: length / count rows each, and one more for the
/// first length % count blocks. scene_blocks.h cuts where rows differ in what they cost.

#pragma once

#include <algorithm>

struct ROW_BLOCK {
    long long start = 0;
    long long length = 0;
};

/// Blocks of a range: never more than rows.
[[nodiscard]] inline int BlockCount(long long rows, int threads) {
    return static_cast<int>(std::min<long long>(threads, rows));
}

/// @param count  number of blocks, at least 1
/// @param index  0 .. count - 1
[[nodiscard]] inline ROW_BLOCK RowBlock(long long first_row, long long rows, int count, int index) {
    const long long base = rows / count;
    const long long longer = rows % count;
    return {first_row + index * base + std::min<long long>(index, longer), base + (index < longer ? 1 : 0)};
}
