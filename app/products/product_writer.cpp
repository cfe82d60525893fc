#include "app/products/product_writer.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <functional>
#include <iterator>
#include <vector>

#include "lib/baselib/image/product_rows.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/copy_mem_mgr.h"
#include "simulation/perturbation_file.h"
#include "simulation/scene_lines.h"
#include "simulation/thread_arg.h"
#include "simulation/thread_count.h"
#include "simulation/threads.h"

namespace {

constexpr double kRequiredPrecision_m = 0.1;

const GRID_VIEW<double>& GridOf(const EARTH_GRIDS& grids, int axis) {
    return axis == 0 ? grids.x : axis == 1 ? grids.y : grids.z;
}

/// The first row behind those that both the grid and the product have.
template <class T>
int EndOfCommonRows(const GRID_VIEW<T>& grid, const IMAGE_SIZE& product) {
    return std::max(std::min(grid.EndRow(), product.lines), grid.first_row);
}

/// Columns 0 .. columns - 1 of single-precision rows.
void WriteSingles(PRODUCT_FILE& file, const GRID_VIEW<const float>& grid, const IMAGE_SIZE& product) {
    const int end_row = EndOfCommonRows(grid, product);
    if (grid.row_stride == product.samples) return file.WriteRows(grid.first_row, end_row - grid.first_row, grid.data);
    if (file.IsHiddenUntilPlaced())
        return file.WriteSpacedRows(grid.first_row, end_row - grid.first_row, grid.data,
                                    static_cast<std::size_t>(grid.row_stride) * sizeof(float));
    WriteRowsMade(file, grid.first_row, end_row, product.samples, [&](long long row, float* pixels) {
        std::memcpy(pixels, grid[static_cast<int>(row)], sizeof(float) * static_cast<std::size_t>(product.samples));
    });
}

PRODUCT_SET Opened(const std::vector<PRODUCT_REQUEST>& products) {
    PRODUCT_SET files;
    for (const PRODUCT_REQUEST& product : products) files.Add(product);
    files.ReserveRoom();
    return files;
}

}  // namespace

PRODUCT_WRITER::PRODUCT_WRITER(const std::vector<PRODUCT_REQUEST>& products, const IMAGE_SIZE& image,
                               const OUTPUT_SIZES& sizes, bool relative_shifts, const VIEW_GEOMETRY& geometry)
    : files_(Opened(products)),
      image_(image),
      sizes_(sizes),
      relative_shifts_(relative_shifts),
      phase_(Find(PRODUCT::SIMU_PHASE)),
      range_shifts_(Find(PRODUCT::RG_COREG)),
      azimuth_shifts_(Find(PRODUCT::AZ_COREG)),
      height_(Find(PRODUCT::H_EARTH)),
      earth_{Find(PRODUCT::X_EARTH), Find(PRODUCT::Y_EARTH), Find(PRODUCT::Z_EARTH)},
      views_(files_, sizes.earth, geometry),
      flags_(files_, image) {}

PRODUCT_FILE* PRODUCT_WRITER::Find(PRODUCT product) const {
    return files_.Find(KindOf(product).key);
}

void PRODUCT_WRITER::WritePhase(const MASTER_GRIDS& grids) {
    WriteSingles(*phase_, grids.phase_rad, image_);
}

void PRODUCT_WRITER::WriteCroppedPhase(const MASTER_GRIDS& grids, const MEM_MGR& phase) {
    const int first_row = grids.phase_rad.first_row;
    CopyMemMgr(phase, image_.samples, EndOfCommonRows(grids.phase_rad, image_) - first_row, *phase_, first_row);
}

/// @param x_step, y_step  master pixels per column and row where the map is relative, else 0
void PRODUCT_WRITER::WriteShiftMap(PRODUCT_FILE& file, const GRID_VIEW<const double>& positions, int x_step,
                                   int y_step) {
    const int columns = sizes_.shift.samples;
    WriteRowsMade(file, positions.first_row, EndOfCommonRows(positions, sizes_.shift), columns,
                  [&](long long row, float* pixels) {
                      const double* const from = positions[static_cast<int>(row)];
                      for (int column = 0; column < columns; ++column) {
                          const double master =
                              static_cast<double>(column) * x_step + static_cast<double>(row) * y_step;
                          pixels[column] = static_cast<float>(from[column] - master);
                      }
                  });
}

void PRODUCT_WRITER::WriteShifts(const SHIFT_GRIDS& grids) {
    const int relative = relative_shifts_ ? 1 : 0;
    WriteShiftMap(*range_shifts_, grids.range, relative * grids.range_factor, 0);
    WriteShiftMap(*azimuth_shifts_, grids.azimuth, 0, relative * grids.azimuth_factor);
}

void PRODUCT_WRITER::WriteHeight(const EARTH_GRIDS& grids) {
    WriteSingles(*height_, grids.radar_dem, sizes_.earth);
}

void PRODUCT_WRITER::FixEarthOffsets(const EARTH_GRIDS& grids) {
    for (int axis = 0; axis < 3; ++axis)
        earth_offsets_m_[axis] =
            PerturbationOffset(GridOf(grids, axis)[sizes_.earth.lines / 2][sizes_.earth.samples / 2]);
}

void PRODUCT_WRITER::WriteEarth(const EARTH_GRIDS& grids, int axis) {
    const GRID_VIEW<double>& grid = GridOf(grids, axis);
    WritePerturbationRows(*earth_[axis], grid, grid.first_row, EndOfCommonRows(grid, sizes_.earth),
                          earth_offsets_m_[axis], kRequiredPrecision_m);
}

void PRODUCT_WRITER::WriteShare(const SCENE& share, bool backward) {
    const std::function<void()> steps[] = {
        [&] {
            if (phase_ != nullptr) WritePhase(share.image);
        },
        [&] {
            if (range_shifts_ != nullptr) WriteShifts(share.shifts);
        },
        [&] {
            for (int axis = 0; axis < 3; ++axis)
                if (earth_[axis] != nullptr) WriteEarth(share.earth, axis);
        },
        [&] {
            if (height_ != nullptr) WriteHeight(share.earth);
        },
        [&] { views_.WriteShare(share); },
        [&] { flags_.WriteShare(share.image.mask.first_row, share.image.mask.EndRow()); },
    };
    if (backward)
        std::for_each(std::rbegin(steps), std::rend(steps), [](const auto& step) { step(); });
    else
        std::for_each(std::begin(steps), std::end(steps), [](const auto& step) { step(); });
}

void PRODUCT_WRITER::WriteSlab(const SCENE& scene, bool leave_cache) {
    const GRID_VIEW<unsigned char>& mask = scene.image.mask;
    std::vector<std::exception_ptr> failures(static_cast<std::size_t>(ThreadCount()));
    const auto write = [&](THREAD_ARG* part) {
        const int first_line = mask.first_row + static_cast<int>(part->start);
        try {
            WriteShare(LinesOf(scene, first_line, first_line + static_cast<int>(part->length)),
                       part->thread_number % 2 == 1);
        } catch (...) {
            failures[part->thread_number] = std::current_exception();
            files_.Abandon();  // others may wait for these rows
        }
    };
    THREADS<THREAD_ARG, unsigned>(0, static_cast<unsigned>(mask.rows), write, THREADS_LOG::SILENT).Run();
    for (const std::exception_ptr& failure : failures)
        if (failure) std::rethrow_exception(failure);
    if (leave_cache) files_.LeaveCache();
    files_.BeginSynchronising();
}

void PRODUCT_WRITER::WantValues() {
    for (const auto& file : files_.Files()) file->WantValues();
}

void PRODUCT_WRITER::Place() {
    for (const auto& file : files_.Files()) {
        const VALUE_STATISTICS& values = file->Values();
        Log().Message(LOGGING_LEVEL::DEBUG, "values of %s: %.9g .. %.9g", file->Path().c_str(),
                      static_cast<double>(values.Minimum()), static_cast<double>(values.Maximum()));
    }
    files_.Place();
}
