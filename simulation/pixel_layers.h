/// \file pixel_layers.h
/// The grids that receive a pixel's values, as one list of layers: what each takes, and where.
/// Threads: constant after construction; what the views reach belongs to the pixel's owner (see pixel_ownership.h).

#pragma once

#include <array>
#include <vector>

#include "simulation/radar_row.h"
#include "simulation/scene.h"

/// Which of the image's rows and columns a sub-sampled grid holds, and where; index -1: the grid leaves it out.
struct GRID_PLACES {
    std::vector<int> row_of{};  ///< element 0: the first row to be simulated
    std::vector<int> column_of{};
    std::vector<unsigned char> next_eight{};  ///< bit i of element c: column c + i has a place
};

/// A quantity and its grid: one of the two views is there. Doubles hold values of single precision.
struct PIXEL_LAYER {
    QUANTITY quantity;
    GRID_VIEW<float> singles;
    GRID_VIEW<double> doubles;
    int end_row;  ///< of the grid
    int columns;
    const int* row_of;  ///< the tables of GRID_PLACES; nullptr: dense, pixels stand at their own rows and columns
    const int* column_of;
    const unsigned char* next_eight;

    [[gnu::always_inline]] void Store(int row, int column, float value) const {
        if (singles.data != nullptr) {
            singles[row][column] = value;
        } else {
            doubles[row][column] = value;
        }
    }
};

inline constexpr int kMaxLayers = 10;

/// Values of one pixel, one per layer: the dense ones, then the sparse ones, also where these have no place for it.
using PIXEL_VALUES = std::array<float, kMaxLayers>;

class PIXEL_LAYERS {
  public:
    explicit PIXEL_LAYERS(const SCENE& scene);
    PIXEL_LAYERS(const PIXEL_LAYERS&) = delete;  // layers point to the places
    PIXEL_LAYERS& operator=(const PIXEL_LAYERS&) = delete;

    /// The dense ones, with a place for every pixel, first.
    [[nodiscard]] const std::vector<PIXEL_LAYER>& All() const { return layers_; }
    [[nodiscard]] int DenseCount() const { return dense_count_; }
    /// Those before the sparse ones of normals, which come last.
    [[nodiscard]] int PlaneCount() const;
    /// 1: some sparse layer takes pixels of this image row; element 0 is the first row to be simulated.
    [[nodiscard]] const std::vector<unsigned char>& SparseRows() const { return sparse_rows_; }

    /// Stores a pixel's values where the layers have a place for it.
    void Store(int row, int column, const PIXEL_VALUES& values) const;

  private:
    void Add(QUANTITY quantity, const GRID_PLACES& places, const GRID_VIEW<float>& singles,
             const GRID_VIEW<double>& doubles);

    int first_row_;
    GRID_PLACES shifts_;
    GRID_PLACES earth_;
    std::vector<PIXEL_LAYER> layers_;
    int dense_count_ = 0;
    std::vector<unsigned char> sparse_rows_;
};
