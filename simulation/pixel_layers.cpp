#include "simulation/pixel_layers.h"

#include <algorithm>

#include "lib/baselib/vectors/lane_count.h"

namespace {

/// Grid indices of the image's rows or columns: those that are multiples of the factor, as far as the grid goes.
std::vector<int> Places(int first, int count, int factor, int end) {
    std::vector<int> places(count, -1);
    for (int i = 0; i < count; ++i) {
        if ((first + i) % factor == 0 && (first + i) / factor < end) places[i] = (first + i) / factor;
    }
    return places;
}

template <class GRID>
GRID_PLACES PlacesOf(const GRID_VIEW<unsigned char>& image, int azimuth_factor, int range_factor, const GRID& grid) {
    GRID_PLACES places;
    if (azimuth_factor == 1 && range_factor == 1) return places;
    places.row_of = Places(image.first_row, image.rows, azimuth_factor, grid.EndRow());
    places.column_of = Places(0, image.columns, range_factor, grid.columns);
    places.next_eight.assign(image.columns, 0);
    for (int column = 0; column < image.columns; ++column) {
        if (places.column_of[column] < 0) continue;
        for (int i = 0; i < kLanes && i <= column; ++i) {
            places.next_eight[column - i] |= static_cast<unsigned char>(1U << i);
        }
    }
    return places;
}

}  // namespace

PIXEL_LAYERS::PIXEL_LAYERS(const SCENE& scene)
    : first_row_(scene.image.mask.first_row), sparse_rows_(scene.image.mask.rows, 0) {
    const GRID_VIEW<unsigned char>& image = scene.image.mask;
    const SHIFT_GRIDS& shifts = scene.shifts;
    const EARTH_GRIDS& earth = scene.earth;
    if (shifts.Wanted()) {
        shifts_ = PlacesOf(image, shifts.azimuth_factor, shifts.range_factor, shifts.range);
        Add(QUANTITY::SLAVE_RANGE_PIXEL, shifts_, {}, shifts.range);
        Add(QUANTITY::SLAVE_AZIMUTH_PIXEL, shifts_, {}, shifts.azimuth);
    }
    if (earth.Wanted()) {
        const GRID_VIEW<double>& coordinate = earth.x ? earth.x : earth.y ? earth.y : earth.z;
        earth_ = coordinate ? PlacesOf(image, earth.azimuth_factor, earth.range_factor, coordinate)
                            : PlacesOf(image, earth.azimuth_factor, earth.range_factor, earth.radar_dem);
        Add(QUANTITY::EARTH_X, earth_, {}, earth.x);
        Add(QUANTITY::EARTH_Y, earth_, {}, earth.y);
        Add(QUANTITY::EARTH_Z, earth_, {}, earth.z);
        Add(QUANTITY::HEIGHT_M, earth_, earth.radar_dem, {});
        Add(QUANTITY::NORMAL_X, earth_, earth.normal[0], {});
        Add(QUANTITY::NORMAL_Y, earth_, earth.normal[1], {});
        Add(QUANTITY::NORMAL_Z, earth_, earth.normal[2], {});
    }
    Add(QUANTITY::PHASE_RAD, {}, scene.image.phase_rad, {});
}

void PIXEL_LAYERS::Add(QUANTITY quantity, const GRID_PLACES& places, const GRID_VIEW<float>& singles,
                       const GRID_VIEW<double>& doubles) {
    if (!singles && !doubles) return;
    PIXEL_LAYER layer{quantity,
                      singles,
                      doubles,
                      singles ? singles.EndRow() : doubles.EndRow(),
                      singles ? singles.columns : doubles.columns,
                      nullptr,
                      nullptr,
                      nullptr};
    if (places.row_of.empty()) {
        layers_.insert(layers_.begin() + dense_count_++, layer);
        return;
    }
    layer.row_of = places.row_of.data();
    layer.column_of = places.column_of.data();
    layer.next_eight = places.next_eight.data();
    layers_.push_back(layer);
    for (std::size_t row = 0; row < sparse_rows_.size(); ++row) {
        if (places.row_of[row] >= 0) sparse_rows_[row] = 1;
    }
}

int PIXEL_LAYERS::PlaneCount() const {
    const auto is_normal = [](const PIXEL_LAYER& layer) {
        return layer.row_of != nullptr && static_cast<int>(layer.quantity) >= kQuantities;
    };
    return static_cast<int>(std::find_if(layers_.begin(), layers_.end(), is_normal) - layers_.begin());
}

void PIXEL_LAYERS::Store(int row, int column, const PIXEL_VALUES& values) const {
    const bool sparse_too = sparse_rows_[row - first_row_] != 0;
    for (std::size_t k = 0; k < layers_.size(); ++k) {
        const PIXEL_LAYER& layer = layers_[k];
        if (layer.row_of == nullptr) {
            if (row < layer.end_row && column < layer.columns) layer.Store(row, column, values[k]);
        } else if (sparse_too) {
            const int grid_row = layer.row_of[row - first_row_];
            const int grid_column = layer.column_of[column];
            if (grid_row >= 0 && grid_column >= 0) layer.Store(grid_row, grid_column, values[k]);
        }
    }
}
