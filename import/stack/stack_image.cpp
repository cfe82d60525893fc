#include "import/stack/stack_image.h"

#include <filesystem>

#include "companions/input_file.h"
#include "import/pair/pair_orbits.h"
#include "import/pools/acquisition_pool.h"
#include "import/sentinel1/acquisition_files.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

namespace {

constexpr std::size_t kPoolLimitBytes = std::size_t{64} << 20U;

void ChangeInterpolation(const std::string& pool_path, const std::string& wanted) {
    std::string interpolation = wanted;
    if (wanted.empty()) {
        const auto choice = InterpolationForPool(pool_path);
        if (!choice) return;
        interpolation = choice->text;
    }
    PARAMETER_POOL_READ_WRITE_CHANGE pool(pool_path);
    if (pool.Get<STRING>("orbit_interpolation").ToStd() == interpolation) return;
    pool.Change("orbit_interpolation", interpolation);
    pool.Update();
}

/// A user's own pool is read where it lies, so that messages name it.
ACQUISITION_OF_POOL WritePool(const IMAGE_ROW& row, const std::string& path) {
    if (!row.pool.empty()) {
        ACQUISITION_OF_POOL acquisition = ReadAcquisition(row.pool);
        std::filesystem::copy_file(row.pool, path);
        return acquisition;
    }
    const S1_ACQUISITION read = ReadSentinel1(row.annotation, row.orbit, std::nullopt);
    WriteAcquisitionPool(path, read.image, read.grid, read.orbit, read.vectors);
    ACQUISITION_OF_POOL acquisition = ReadAcquisition(path);
    acquisition.pool = row.annotation;
    return acquisition;
}

STACK_IMAGE MakeImage(const IMAGE_ROW& row, const std::string& folder, const std::string& interpolation) {
    const std::string path = folder + "/" + row.name + ".pool";
    STACK_IMAGE image{row.name, WritePool(row, path), 0.0, 0.0, ""};
    image.side = LookDirection(image.acquisition, "");
    RequireOrbitCovers(image.acquisition);
    ChangeInterpolation(path, interpolation);
    image.pool_text = ReadWholeFile(path, kPoolLimitBytes);
    return image;
}

/// The first line on the first image's time axis.
double FirstLine_s(const ORBIT_OF_POOL& first, const ACQUISITION_OF_POOL& acquisition) {
    if (!first.HasReferenceOfSameKind(acquisition.orbit))
        throw COMPANION_ERROR(acquisition.pool + ": its times are of another kind than the first image's");
    return first.SecondsFromReferenceOf(acquisition.orbit) + acquisition.TimeOfLine(0.0);
}

[[noreturn]] void RefuseRow(const IMAGE_ROW& row, const std::string& reason) {
    throw COMPANION_ERROR(row.place.file + ": " + row.place.where + ": image " + row.name + ": " + reason);
}

}  // namespace

std::vector<STACK_IMAGE> MakeImages(const std::vector<IMAGE_ROW>& rows, const std::string& folder,
                                    const std::string& interpolation) {
    std::vector<STACK_IMAGE> images;
    images.reserve(rows.size());
    for (const IMAGE_ROW& row : rows) {
        try {
            images.push_back(MakeImage(row, folder, interpolation));
            images.back().first_line_s = FirstLine_s(images.front().acquisition.orbit, images.back().acquisition);
        } catch (const ERROR_EXCEPTION& error) {
            RefuseRow(row, error.Message());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            RefuseRow(row, error.what());
        }
    }
    return images;
}
