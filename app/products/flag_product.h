/// \file flag_product.h
/// Layover and shadow: a product that needs none of the kernel's grids. It is made from the DEM and the orbits, piece
/// by piece: with the slabs of the other products, or on threads of its own. Threads: constant once it is prepared.

#pragma once

#include <optional>

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"
#include "lib/baselib/image/product_set.h"
#include "simulation/layover_shadow.h"

class FLAG_PRODUCT {
  public:
    /// Its file, if it is wanted, is one of the set.
    FLAG_PRODUCT(const PRODUCT_SET& files, const IMAGE_SIZE& image);

    /// Before the first line is written. Nothing where it is not wanted.
    /// @param scene     of the whole image
    /// @param bounds    samples outside are voids
    /// @param relief_m  between the lowest and the highest terrain
    void Prepare(const SCENE& scene, const TERRAIN_BOUNDS& bounds, double relief_m);

    /// The pieces that begin in lines first_line .. end_line - 1: all lines are written once, and none twice, when all
    /// have been asked for.
    /// @throws ERROR_CAN_NOT_WRITE_FILE
    void WriteShare(int first_line, int end_line) const;

    /// The same up to the end of the image, on ThreadCount() threads.
    /// @throws ERROR_CAN_NOT_WRITE_FILE or the text of a thread that failed
    void WriteRest(int first_line) const;

  private:
    void WritePieces(int first, int end) const;

    IMAGE_SIZE image_;
    PRODUCT_FILE* file_ = nullptr;
    std::optional<LAYOVER_SHADOW> flags_;
};

/// Memory that its making takes beside the grids, about; 0 when it is not wanted.
[[nodiscard]] double FlagsMemory_bytes(const REQUEST& request, const DEM_RANGE& simulated, const IMAGE_SIZE& image);
