/// \file product_writer.h
/// The products of one run on their way to the disk: opened, with all their room, at the end of stage A; written band
/// by band from what the kernel has filled; put in place when all are complete. A scene's grids tell which of a
/// product's rows they hold: those of the whole image, or those of one slab. What the grids hold last is written in
/// stage C; slabs before it are written as soon as they are there, by all threads.

#pragma once

#include <array>
#include <vector>

#include "app/acquisition/acquisitions.h"
#include "app/products/flag_product.h"
#include "app/products/view_products.h"
#include "app/scene/output_sizes.h"
#include "lib/baselib/image/product_set.h"
#include "lib/baselib/sidecar/product_kind.h"
#include "simulation/scene.h"

class PRODUCT_WRITER {
  public:
    /// @param products         what WantedProducts() tells
    /// @param image            the master image: what is left of the phase
    /// @param relative_shifts  the shift maps tell the way to the slave, not the place there
    /// @throws ERROR_CAN_NOT_CREATE_FILE, ERROR_NO_DISK_SPACE
    PRODUCT_WRITER(const std::vector<PRODUCT_REQUEST>& products, const IMAGE_SIZE& image, const OUTPUT_SIZES& sizes,
                   bool relative_shifts, const VIEW_GEOMETRY& geometry);

    /// Whether nobody sees rows that are written before stage C.
    [[nodiscard]] bool MayBeWrittenEarly() const { return files_.AreHiddenUntilPlaced(); }

    /// To be called before anything is written: Place() and the run's report tell of values.
    void WantValues();

    void WritePhase(const MASTER_GRIDS& grids);
    /// The phase of an image with a border, by the parallel copy kernel with its log lines.
    /// @param phase      the pixels of the grids
    void WriteCroppedPhase(const MASTER_GRIDS& grids, const MEM_MGR& phase);
    void WriteShifts(const SHIFT_GRIDS& grids);
    void WriteHeight(const EARTH_GRIDS& grids);

    /// The offsets of the Earth files, from grids that hold the files' centre row.
    void FixEarthOffsets(const EARTH_GRIDS& grids);
    [[nodiscard]] double EarthOffset(int axis) const { return earth_offsets_m_[axis]; }
    void WriteEarth(const EARTH_GRIDS& grids, int axis);

    [[nodiscard]] const VIEW_PRODUCTS& Views() const { return views_; }
    [[nodiscard]] FLAG_PRODUCT& Flags() { return flags_; }

    /// All products that are wanted, silently, on ThreadCount() threads.
    /// @param leave_cache  the system shall not fill the memory with the slabs before
    void WriteSlab(const SCENE& scene, bool leave_cache);

    [[nodiscard]] const PRODUCT_FILE& RangeShifts() const { return *range_shifts_; }
    [[nodiscard]] const PRODUCT_FILE& AzimuthShifts() const { return *azimuth_shifts_; }
    [[nodiscard]] const PRODUCT_FILE& Earth(int axis) const { return *earth_[axis]; }

    /// Every product that is wanted, once it is written.
    [[nodiscard]] const PRODUCT_SET& Files() const { return files_; }

    /// To the disk, and in the place of the older ones, after a line at DEBUG with the values of each.
    /// @throws ERROR_CAN_NOT_WRITE_FILE
    void Place();
    /// The run has ended well: the older products go.
    void Accept() { files_.Accept(); }

  private:
    [[nodiscard]] PRODUCT_FILE* Find(PRODUCT product) const;
    /// One thread's part of a slab. Threads begin at different products: the system lets one write into a file at a
    /// time.
    void WriteShare(const SCENE& share, bool backward);
    void WriteShiftMap(PRODUCT_FILE& file, const GRID_VIEW<const double>& positions, int x_step, int y_step);

    PRODUCT_SET files_;
    IMAGE_SIZE image_;
    OUTPUT_SIZES sizes_;
    bool relative_shifts_;
    PRODUCT_FILE* phase_;  ///< these are null for products that are not wanted
    PRODUCT_FILE* range_shifts_;
    PRODUCT_FILE* azimuth_shifts_;
    PRODUCT_FILE* height_;
    std::array<PRODUCT_FILE*, 3> earth_;  ///< x, y, z
    std::array<double, 3> earth_offsets_m_{};
    VIEW_PRODUCTS views_;
    FLAG_PRODUCT flags_;
};
