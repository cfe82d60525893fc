#include "simulation/triangle_filler.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "lib/baselib/logging/logging.h"
#include "simulation/triangle_normals.h"

namespace {

FILLING FillingOf(PREPARED_SCENE& prepared, int block, CLAIMED_PIXELS& claimed) {
    const PIXEL_LAYERS& layers = prepared.Layers();
    const GRID_VIEW<unsigned char>& mask = prepared.Scene().image.mask;
    FILLING filling{};
    filling.layers = layers.All().data();
    filling.dense_count = layers.DenseCount();
    filling.plane_count = layers.PlaneCount();
    filling.layer_count = static_cast<int>(layers.All().size());
    filling.sparse_row = layers.SparseRows().data();
    filling.first_row = mask.first_row;
    filling.last_row = mask.EndRow() - 1;
    filling.last_column = mask.columns - 1;
    filling.claimed = &claimed;
    filling.ownership = &prepared.Ownership();
    filling.block = block;
    filling.contested = &prepared.Contested(block);
    return filling;
}

}  // namespace

TRIANGLE_FILLER::TRIANGLE_FILLER(PREPARED_SCENE& prepared, int block)
    : mask_(prepared.Scene().image.mask),
      ownership_(prepared.Ownership()),
      block_(block),
      claimed_(mask_.first_row, mask_.rows, mask_.columns),
      filling_(FillingOf(prepared, block, claimed_)),
      wants_normals_(static_cast<bool>(prepared.Scene().earth.normal[0])),
      vector_level_(prepared.VectorLevel()),
      fill_cells_(VELMORA_AT_LEVEL(prepared.VectorLevel(), FillCells)) {}

void TRIANGLE_FILLER::FillRow(const RADAR_ROW& upper, const RADAR_ROW& lower,
                              const std::vector<unsigned char>& wanted) {
    CORNER_ROWS corners{};
    for (int q = 0; q < kQuantities; ++q) {
        corners.values[q][0] = upper[static_cast<QUANTITY>(q)].data();
        corners.values[q][1] = lower[static_cast<QUANTITY>(q)].data();
    }
    if (wants_normals_) FindNormals(upper, lower, wanted, corners);
    const long long asked_of_lines = fill_cells_(filling_, corners, wanted.data(), static_cast<int>(wanted.size()) - 1);
    for (long long i = 0; i < asked_of_lines; ++i) {
        Log().Message(LOGGING_LEVEL::WARNING, "RADAR_SOLUTION::IsInside : Not triangle, only line");
    }
}

/// From the first cell that is filled to the last. Those between that are not filled as well: their samples have
/// places, too.
void TRIANGLE_FILLER::FindNormals(const RADAR_ROW& upper, const RADAR_ROW& lower,
                                  const std::vector<unsigned char>& wanted, CORNER_ROWS& corners) {
    const auto is_wanted = [](unsigned char mark) { return mark != 0; };
    const auto first = std::find_if(wanted.begin(), wanted.end(), is_wanted) - wanted.begin();
    const auto end = wanted.rend() - std::find_if(wanted.rbegin(), wanted.rend(), is_wanted);
    if (first >= end) return;
    const auto run = [first](const RADAR_ROW& row) {
        return SAMPLE_RUN{row[QUANTITY::EARTH_X].data() + first, row[QUANTITY::EARTH_Y].data() + first,
                          row[QUANTITY::EARTH_Z].data() + first};
    };
    double* places[2][3];
    for (int t = 0; t < 2; ++t) {
        for (int axis = 0; axis < 3; ++axis) {
            normals_[t][axis].resize(static_cast<std::size_t>(upper.size));
            places[t][axis] = normals_[t][axis].data() + first;
            corners.normals[t][axis] = normals_[t][axis].data();
        }
    }
    VELMORA_AT_LEVEL(vector_level_, TriangleNormals)(run(upper), run(lower), static_cast<int>(end - first), places);
}

void TRIANGLE_FILLER::WriteMask() const {
    constexpr int kBits = CLAIMED_PIXELS::kBits;
    constexpr std::uint64_t kAll = ~std::uint64_t{0};
    for (int row = claimed_.FirstTouched(); row <= claimed_.LastTouched(); ++row) {
        const std::uint64_t* const words = claimed_.WordsOf(row);
        unsigned char* const marks = mask_[row];
        for (int column = 0; column < mask_.columns; column += kBits) {
            const std::uint64_t claimed = words[column / kBits];
            if (claimed == 0) continue;
            const int last_column = std::min(column + kBits, mask_.columns) - 1;
            const bool owns_all = ownership_.OwnsAll(block_, {column, last_column, row, row});
            if (owns_all && claimed == kAll) {
                std::memset(marks + column, 1, kBits);
                continue;
            }
            for (std::uint64_t left = claimed; left != 0; left &= left - 1) {
                const int at = column + std::countr_zero(left);
                if (owns_all || ownership_.Owns(block_, row, at)) marks[at] = 1;
            }
        }
    }
}
