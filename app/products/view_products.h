/// \file view_products.h
/// The products that tell what the ground sees of the satellites: made from the grid of heights on their way to the
/// disk, band by band, by several threads.

#pragma once

#include <array>

#include "app/request/request.h"
#include "app/scene/output_sizes.h"
#include "lib/baselib/image/product_set.h"
#include "simulation/ground_view_rows.h"

class VIEW_PRODUCTS {
  public:
    /// The files of those that are wanted are in the set.
    VIEW_PRODUCTS(const PRODUCT_SET& files, const IMAGE_SIZE& size, const VIEW_GEOMETRY& geometry);

    /// The rows that the scene's grid of heights holds, on ThreadCount() threads.
    /// @throws ERROR_CAN_NOT_WRITE_FILE or the text of a thread that failed
    void Write(const SCENE& scene) const;
    /// The same on the calling thread.
    void WriteShare(const SCENE& share) const;

  private:
    [[nodiscard]] bool AnyWanted() const;
    [[nodiscard]] int EndRow(const SCENE& scene) const;
    void WriteRows(const GROUND_VIEW_ROWS& views, long long first_row, long long end_row) const;
    void Abandon() const;

    IMAGE_SIZE size_;
    VIEW_GEOMETRY geometry_;
    std::array<PRODUCT_FILE*, kViews> files_{};  ///< null: not wanted
};
