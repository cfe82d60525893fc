/// \file radar_row.h
/// One row of DEM samples in radar geometry, as one array per quantity: what the vector code works on.
/// Element i of every array belongs to DEM column first_column + i. Pixels are fractional, azimuth = line, range =
/// column. Threads: belongs to one thread; allocated once, before its first row.

#pragma once

#include <array>
#include <vector>

#include "simulation/scene.h"

/// The quantities that are interpolated inside a cell, and the pixel coordinates of its corners. Those behind the
/// height belong to a triangle, not to its corners.
enum class QUANTITY {
    RANGE_PIXEL,
    AZIMUTH_PIXEL,
    PHASE_RAD,
    SLAVE_RANGE_PIXEL,
    SLAVE_AZIMUTH_PIXEL,
    EARTH_X,
    EARTH_Y,
    EARTH_Z,
    HEIGHT_M,  ///< rounded to single precision
    NORMAL_X,
    NORMAL_Y,
    NORMAL_Z,
};
inline constexpr int kQuantities = 9;  ///< of a sample

class RADAR_ROW {
  public:
    explicit RADAR_ROW(const DEM_RANGE& simulated)
        : first_column(simulated.first_column), size(simulated.last_column - simulated.first_column + 1) {
        for (std::vector<double>& array : values_) array.resize(size);
        for (std::vector<double>* array : {&master_time_s, &master_range_m, &slave_time_s, &slave_range_m}) {
            array->resize(size);
        }
        for (std::vector<unsigned char>* array : {&in_area, &wanted, &master_solved, &solved}) array->resize(size);
    }

    [[nodiscard]] std::vector<double>& operator[](QUANTITY quantity) { return values_[static_cast<int>(quantity)]; }
    [[nodiscard]] const std::vector<double>& operator[](QUANTITY quantity) const {
        return values_[static_cast<int>(quantity)];
    }

    int row = -1;                   ///< DEM row; -1: none yet
    bool positions_filled = false;  ///< EARTH_X, EARTH_Y, EARTH_Z and HEIGHT_M of all elements
    int first_column;
    int size;
    std::vector<double> master_time_s{};
    std::vector<double> master_range_m{};
    std::vector<double> slave_time_s{};
    std::vector<double> slave_range_m{};
    std::vector<unsigned char> in_area{};        ///< inside the simulated area
    std::vector<unsigned char> wanted{};         ///< to be solved next
    std::vector<unsigned char> master_solved{};  ///< master time and range are there
    std::vector<unsigned char> solved{};         ///< everything is there

  private:
    std::array<std::vector<double>, kQuantities> values_{};
};
