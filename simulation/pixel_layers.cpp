#include "simulation/pixel_layers.h"

#include <cstdint>

namespace {

/// Grid indices of the image's rows or columns: those that are multiples of the factor, as far as the grid goes.
std::vector<int> Places(int image_size, int factor, int grid_size) {
    std::vector<int> places(image_size, -1);
    for (int i = 0; i < image_size && i / factor < grid_size; i += factor) places[i] = i / factor;
    return places;
}

GRID_PLACES PlacesOf(const GRID_VIEW<unsigned char>& image, int azimuth_factor, int range_factor, int rows,
                     int columns) {
    GRID_PLACES places;
    places.dense = azimuth_factor == 1 && range_factor == 1;
    if (places.dense) return places;
    places.row_of = Places(image.rows, azimuth_factor, rows);
    places.column_of = Places(image.columns, range_factor, columns);
    places.next_eight.assign(image.columns, 0);
    for (int column = 0; column < image.columns; ++column) {
        if (places.column_of[column] < 0) continue;
        for (int i = 0; i < PIXEL_LAYERS::kLanes && i <= column; ++i) {
            places.next_eight[column - i] |= static_cast<unsigned char>(1U << i);
        }
    }
    return places;
}

}  // namespace

PIXEL_LAYERS::PIXEL_LAYERS(const SCENE& scene) : sparse_row_(scene.image.mask.rows, 0) {
    const GRID_VIEW<unsigned char>& image = scene.image.mask;
    const SHIFT_GRIDS& shifts = scene.shifts;
    const EARTH_GRIDS& earth = scene.earth;
    if (shifts.Wanted()) {
        shifts_ = PlacesOf(image, shifts.azimuth_factor, shifts.range_factor, shifts.range.rows, shifts.range.columns);
        Add(QUANTITY::SLAVE_RANGE_PIXEL, shifts_, {}, shifts.range);
        Add(QUANTITY::SLAVE_AZIMUTH_PIXEL, shifts_, {}, shifts.azimuth);
    }
    if (earth.Wanted()) {
        const auto size_of = [](const auto& grid) { return POINT<int>{grid.columns, grid.rows}; };
        const POINT<int> size = earth.x   ? size_of(earth.x)
                                : earth.y ? size_of(earth.y)
                                : earth.z ? size_of(earth.z)
                                          : size_of(earth.radar_dem);
        earth_ = PlacesOf(image, earth.azimuth_factor, earth.range_factor, size.y, size.x);
        Add(QUANTITY::EARTH_X, earth_, {}, earth.x);
        Add(QUANTITY::EARTH_Y, earth_, {}, earth.y);
        Add(QUANTITY::EARTH_Z, earth_, {}, earth.z);
        Add(QUANTITY::HEIGHT_M, earth_, earth.radar_dem, {});
    }
    Add(QUANTITY::PHASE_RAD, image_, scene.image.phase_rad, {});
}

void PIXEL_LAYERS::Add(QUANTITY quantity, const GRID_PLACES& places, const GRID_VIEW<float>& singles,
                       const GRID_VIEW<double>& doubles) {
    if (!singles && !doubles) return;
    (places.dense ? dense_ : sparse_).push_back({quantity, &places, singles, doubles});
    if (places.dense) return;
    for (std::size_t row = 0; row < sparse_row_.size(); ++row) {
        if (places.row_of[row] >= 0) sparse_row_[row] = 1;
    }
}

void PIXEL_LAYERS::Store(int row, int column, const PIXEL_VALUES& values) const {
    const float* value = values.data();
    for (const PIXEL_LAYER& layer : dense_) {
        if (row < layer.EndRow() && column < layer.Columns()) layer.Store(row, column, *value);
        ++value;
    }
    if (!IsSparseRow(row)) return;
    for (const PIXEL_LAYER& layer : sparse_) {
        const int grid_row = layer.places->row_of[row];
        const int grid_column = layer.places->column_of[column];
        if (grid_row >= 0 && grid_column >= 0) layer.Store(grid_row, grid_column, *value);
        ++value;
    }
}
