/// \file pixel_claims.h
/// Which block of DEM rows a master pixel belongs to, where several cells reach it (layover, seams between blocks).
/// Rule: the cell of the lowest DEM row, and in it of the lowest column, as if one thread walked the whole DEM. Blocks are
/// contiguous and numbered in the order of their rows, so the lowest block wins; inside a block the first cell does. Thus
/// the products do not depend on the number of threads.
///
/// How: a claim puts the block's tag into the pixel's mask byte, over 0 or over the tag of a later block. Whoever finds 0
/// writes the pixel at once. Whoever takes it from a later block may not write while that block may still be writing: it
/// keeps the values, and they are stored when all threads have ended, from the last block to the first.
/// Invariants while the threads run: (1) the tag of a pixel only falls; (2) a pixel's grid elements are written by the one
/// block that found its mask 0; (3) each BLOCK_CLAIMS is used by one thread.
/// Tags end at 255: of more than 255 threads, the last ones share a tag, and the first to come wins among them.

#pragma once

#include <cstddef>
#include <vector>

struct SCENE;

/// The values of one pixel in every layer that it has, as precise as the products. Fields of layers that are not wanted
/// hold anything.
struct PIXEL_VALUES {
    float phase_rad = 0.0F;
    float slave_range = 0.0F;
    float slave_azimuth = 0.0F;
    float x_m = 0.0F;
    float y_m = 0.0F;
    float z_m = 0.0F;
    float height_m = 0.0F;
    bool on_shift_grid = false;  ///< the pixel has a place in the sub-sampled shift grids
    bool on_earth_grid = false;  ///< the same for Earth coordinates and height
};

/// Writes the values into the scene's grids.
void StorePixel(const SCENE& scene, int row, int column, const PIXEL_VALUES& values);

enum class CLAIM { REFUSED, WRITE_NOW, KEEP };

/// The claims of one block.
class BLOCK_CLAIMS {
  public:
    explicit BLOCK_CLAIMS(std::size_t block);

    /// Whether this block could still get the pixel.
    [[nodiscard]] bool IsOpen(unsigned char& mask) const;
    [[nodiscard]] CLAIM Claim(unsigned char& mask) const;
    /// Keeps what was claimed with the answer KEEP.
    void Keep(int row, int column, const PIXEL_VALUES& values) { kept_.push_back({row, column, values}); }
    void StoreKept(const SCENE& scene) const;

  private:
    struct KEPT_PIXEL {
        int row;
        int column;
        PIXEL_VALUES values;
    };

    unsigned char tag_;
    std::vector<KEPT_PIXEL> kept_;
};
