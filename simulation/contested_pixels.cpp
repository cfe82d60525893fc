#include "simulation/contested_pixels.h"

#include <bit>

namespace {

/// Mark of a pixel that was settled: by a block above the one at work, or by a later cell of the same block.
constexpr unsigned char kSettled = 2;

}  // namespace

void KeepPixels(CONTESTED_PIXELS& list, int row, int column, unsigned lanes, const float (*values)[kLanes],
                int layers) {
    for (unsigned left = lanes; left != 0; left &= left - 1) {
        const int lane = std::countr_zero(left);
        CONTESTED_PIXEL pixel{row, column + lane, {}};
        for (int k = 0; k < layers; ++k) pixel.values[k] = values[k][lane];
        list.push_back(pixel);
    }
}

void SettleContestedPixels(const std::vector<CONTESTED_PIXELS>& lists, const PIXEL_OWNERSHIP& ownership,
                           const PIXEL_LAYERS& layers, const GRID_VIEW<unsigned char>& mask) {
    for (int block = static_cast<int>(lists.size()) - 1; block >= 0; --block) {
        const CONTESTED_PIXELS& list = lists[block];
        // From the last to the first: the first cell of the block has the last word.
        for (auto pixel = list.rbegin(); pixel != list.rend(); ++pixel) {
            unsigned char& mark = mask[pixel->row][pixel->column];
            if (mark == 1 && ownership.OwnerOf(pixel->row, pixel->column) < block) continue;
            mark = kSettled;
            layers.Store(pixel->row, pixel->column, pixel->values);
        }
    }
    for (const CONTESTED_PIXELS& list : lists) {
        for (const CONTESTED_PIXEL& pixel : list) mask[pixel.row][pixel.column] = 1;
    }
}
