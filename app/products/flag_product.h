/// \file flag_product.h
/// Layover and shadow: a product that needs none of the kernel's grids. It is made from the DEM and the orbits, piece
/// by piece, by several threads.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"
#include "lib/baselib/image/product_set.h"
#include "simulation/gentle_terrain.h"
#include "simulation/scene.h"

class FLAG_PRODUCT {
  public:
    /// Its file, if it is wanted, is one of the set.
    FLAG_PRODUCT(const PRODUCT_SET& files, const IMAGE_SIZE& image);

    /// The whole image.
    /// @param bounds    samples outside are voids
    /// @param relief_m  between the lowest and the highest terrain
    /// @throws ERROR_CAN_NOT_WRITE_FILE or the text of a thread that failed
    void Write(const SCENE& scene, const TERRAIN_BOUNDS& bounds, double relief_m) const;

  private:
    IMAGE_SIZE image_;
    PRODUCT_FILE* file_ = nullptr;
};

/// Memory that its making takes beside the grids, about; 0 when it is not wanted.
[[nodiscard]] double FlagsMemory_bytes(const REQUEST& request, const DEM_RANGE& simulated, const IMAGE_SIZE& image);
