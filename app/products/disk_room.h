/// \file disk_room.h
/// The files that a run will write with their sizes, and whether the disks have room for them. A run asks the files
/// themselves, once they are open (PRODUCT_SET::ReserveRoom); who only looks opens none.

#pragma once

#include <vector>

#include "app/request/request.h"
#include "app/scene/output_sizes.h"

struct PRODUCT_TO_COME {
    SOURCED_TEXT file;
    IMAGE_SIZE size;
    int pixel_bytes = 4;

    [[nodiscard]] long long Bytes() const;
};

/// @param image  the master image
[[nodiscard]] std::vector<PRODUCT_TO_COME> ProductsToCome(const REQUEST& request, const IMAGE_SIZE& image,
                                                          const OUTPUT_SIZES& sizes);

/// Devices and pipes need no room; a folder that is not there is told elsewhere. Older products stay until the run has
/// ended, so their room does not count.
/// @throws ERROR_NO_DISK_SPACE with the line of a run
void RequireRoomFor(const std::vector<PRODUCT_TO_COME>& products);
