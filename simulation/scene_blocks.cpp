#include "simulation/scene_blocks.h"

#include <algorithm>

namespace {

std::vector<ROW_BLOCK> EqualBlocks(long long first_row, long long rows, int count) {
    std::vector<ROW_BLOCK> blocks;
    for (int i = 0; i < count; ++i) blocks.push_back(RowBlock(first_row, rows, count, i));
    return blocks;
}

long long CellsOf(const CELL_RANGE& row) {
    return row.end_column - row.first_column;
}

}  // namespace

/// A slab of lines lies askew in the DEM: of two shares of equally many rows one may have twice the other's cells.
std::vector<ROW_BLOCK> BlocksOf(const SCENE& scene, int threads) {
    const long long first_row = scene.simulated.first_row;
    const long long rows = std::max(scene.simulated.last_row - scene.simulated.first_row, 0);
    const int count = BlockCount(rows, threads);
    if (scene.cells.empty() || count < 2) return EqualBlocks(first_row, rows, count);
    long long all = 0;
    for (const CELL_RANGE& row : scene.cells) all += CellsOf(row);
    std::vector<ROW_BLOCK> blocks;
    long long done = 0;  // cells
    long long end = 0;   // rows
    for (int i = 0; i < count; ++i) {
        const long long start = end;
        const long long last_end = rows - (count - 1 - i);  // leaves one row for each block to come
        while (end < last_end && (end == start || done * count < all * (i + 1)))
            done += CellsOf(scene.cells[static_cast<std::size_t>(end++)]);
        if (i + 1 == count) end = rows;
        blocks.push_back({first_row + start, end - start});
    }
    return blocks;
}
