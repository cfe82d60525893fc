/// \file pixel_layers.h
/// The grids that receive a pixel's values, as one list of layers: what each takes, and where.
/// Threads: constant after construction; what the pointers reach belongs to the pixel's owner (see pixel_ownership.h).

#pragma once

#include <array>
#include <vector>

#include "simulation/radar_row.h"
#include "simulation/scene.h"

/// Rows and columns of the image that a grid holds; index -1: the grid leaves it out.
struct GRID_PLACES {
    bool dense = true;  ///< pixels have their places at their own rows and columns, as far as the grid goes
    std::vector<int> row_of{};
    std::vector<int> column_of{};
    std::vector<unsigned char> next_eight{};  ///< bit i of element c: column c + i has a place
};

/// One of the two grids is there. Doubles hold values of single precision.
struct PIXEL_LAYER {
    QUANTITY quantity;
    const GRID_PLACES* places;
    GRID_VIEW<float> singles;
    GRID_VIEW<double> doubles;

    [[nodiscard]] int EndRow() const { return singles ? singles.EndRow() : doubles.EndRow(); }
    [[nodiscard]] int Columns() const { return singles ? singles.columns : doubles.columns; }

    void Store(int row, int column, float value) const {
        if (singles) {
            singles[row][column] = value;
        } else {
            doubles[row][column] = value;
        }
    }
};

inline constexpr int kMaxLayers = 7;

/// Values of one pixel, one per layer: the dense ones, then the sparse ones, also where these have no place for it.
using PIXEL_VALUES = std::array<float, kMaxLayers>;

class PIXEL_LAYERS {
  public:
    static constexpr int kLanes = 8;  ///< neighbouring pixels that the vector code stores at once

    explicit PIXEL_LAYERS(const SCENE& scene);
    PIXEL_LAYERS(const PIXEL_LAYERS&) = delete;  // layers point to the places
    PIXEL_LAYERS& operator=(const PIXEL_LAYERS&) = delete;

    /// Those with a place for every pixel, and the others.
    [[nodiscard]] const std::vector<PIXEL_LAYER>& Dense() const { return dense_; }
    [[nodiscard]] const std::vector<PIXEL_LAYER>& Sparse() const { return sparse_; }
    /// Whether some sparse layer takes pixels of an image row.
    [[nodiscard]] bool IsSparseRow(int row) const { return sparse_row_[row] != 0; }

    [[nodiscard]] std::size_t Count() const { return dense_.size() + sparse_.size(); }

    /// Stores a pixel's values where the layers have a place for it.
    void Store(int row, int column, const PIXEL_VALUES& values) const;

  private:
    void Add(QUANTITY quantity, const GRID_PLACES& places, const GRID_VIEW<float>& singles,
             const GRID_VIEW<double>& doubles);

    GRID_PLACES image_;
    GRID_PLACES shifts_;
    GRID_PLACES earth_;
    std::vector<PIXEL_LAYER> dense_;
    std::vector<PIXEL_LAYER> sparse_;
    std::vector<unsigned char> sparse_row_;
};
