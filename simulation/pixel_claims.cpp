#include "simulation/pixel_claims.h"

#include <algorithm>
#include <atomic>

#include "simulation/scene.h"

namespace {

constexpr std::size_t kLastTag = 255;

void StoreShifts(const SHIFT_GRIDS& grids, int row, int column, const PIXEL_VALUES& values) {
    const int sub_row = row / grids.azimuth_factor;
    const int sub_column = column / grids.range_factor;
    grids.range[sub_row][sub_column] = values.slave_range;
    grids.azimuth[sub_row][sub_column] = values.slave_azimuth;
}

void StoreEarth(const EARTH_GRIDS& grids, int row, int column, const PIXEL_VALUES& values) {
    const int sub_row = row / grids.azimuth_factor;
    const int sub_column = column / grids.range_factor;
    if (grids.x != nullptr) grids.x[sub_row][sub_column] = values.x_m;
    if (grids.y != nullptr) grids.y[sub_row][sub_column] = values.y_m;
    if (grids.z != nullptr) grids.z[sub_row][sub_column] = values.z_m;
    if (grids.radar_dem != nullptr) grids.radar_dem[sub_row][sub_column] = values.height_m;
}

}  // namespace

void StorePixel(const SCENE& scene, int row, int column, const PIXEL_VALUES& values) {
    if (scene.image.phase_rad != nullptr) scene.image.phase_rad[row][column] = values.phase_rad;
    if (values.on_shift_grid) StoreShifts(scene.shifts, row, column, values);
    if (values.on_earth_grid) StoreEarth(scene.earth, row, column, values);
}

BLOCK_CLAIMS::BLOCK_CLAIMS(std::size_t block) : tag_(static_cast<unsigned char>(std::min(block + 1, kLastTag))) {}

bool BLOCK_CLAIMS::IsOpen(unsigned char& mask) const {
    const unsigned char present = std::atomic_ref(mask).load(std::memory_order_relaxed);
    return present == 0 || present > tag_;
}

CLAIM BLOCK_CLAIMS::Claim(unsigned char& mask) const {
    const std::atomic_ref owner(mask);
    unsigned char present = owner.load(std::memory_order_relaxed);
    while (present == 0 || present > tag_) {
        if (owner.compare_exchange_weak(present, tag_, std::memory_order_relaxed))
            return present == 0 ? CLAIM::WRITE_NOW : CLAIM::KEEP;
    }
    return CLAIM::REFUSED;
}

void BLOCK_CLAIMS::StoreKept(const SCENE& scene) const {
    for (const KEPT_PIXEL& pixel : kept_) StorePixel(scene, pixel.row, pixel.column, pixel.values);
}
