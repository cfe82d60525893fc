#include "app/products/result_images.h"

#include <bit>
#include <cstdint>

#include "app/say.h"
#include "simulation/initialize_mem_mgr.h"

namespace {

void Allocate(MEM_MGR& image, const IMAGE_SIZE& size, PIXEL_TYPE pixel_type) {
    image.Allocate(0, 0, size.samples - 1LL, size.lines - 1LL, pixel_type);
}

void AllocatePhase(MEM_MGR& phase, const IMAGE_SIZE& size, float initial_phase) {
    Say(" - Simulated phase allocation ");
    Say("   a. Mem allocate simu_phase          (GetMemory) ");
    Allocate(phase, size, PIXEL_TYPE::FLT_6);
    Say("   b. Value initialize of simu_phase   (Multithread) ");
    InitializeMemMgr(phase, std::bit_cast<std::uint32_t>(initial_phase));
}

/// The matrices in memory hold every pixel that is a multiple of the factors, also where that is more than the output
/// file.
IMAGE_SIZE ShiftMatrixSize(const IMAGE_SIZE& simulated, const SUBSAMPLING& factors) {
    return {(simulated.samples - 1) / factors.x + 1, (simulated.lines - 1) / factors.y + 1};
}

void AllocateShifts(RESULT_IMAGES& images, const IMAGE_SIZE& size) {
    constexpr std::uint32_t kZero = 0;
    Say(" - Range shift matrix allocation ");
    Say("   a. Mem initialize of rg_position    (Get Memory)");
    Allocate(images.range_shift, size, PIXEL_TYPE::FLT_15);
    Say("   b. Value initialize of rg_mapping   (Multithread)");
    InitializeMemMgr(images.range_shift, kZero);
    Say(" - Azimuth shift matrix allocation ");
    Say("   a. Mem initialize of az_position    (Get Memory)");
    Allocate(images.azimuth_shift, size, PIXEL_TYPE::FLT_15);
    Say("   b. Value initialize of az_position  (Multithread)");
    InitializeMemMgr(images.azimuth_shift, kZero);
}

void AllocateEarth(RESULT_IMAGES& images, const IMAGE_SIZE& size) {
    Say(" - Earth matrixes allocation ");
    Say("   a. x earth matrix                   (Get Memory)");
    Allocate(images.x_earth, size, PIXEL_TYPE::FLT_15);
    Say("   b. y earth matrix                   (Get Memory)");
    Allocate(images.y_earth, size, PIXEL_TYPE::FLT_15);
    Say("   c. z earth matrix                   (Get Memory)");
    Allocate(images.z_earth, size, PIXEL_TYPE::FLT_15);
}

IMAGE_SIZE InMemory(const SLAB_PLAN& slabs, const IMAGE_SIZE& size, int factor) {
    return {size.samples, RowsInMemory(slabs, factor, size.lines)};
}

}  // namespace

float ReadInitialPhase(const REQUEST& request) {
    const SOURCED_TEXT& value = request.phase.initial_value;
    if (!value.Given()) return 0.0F;
    const float phase = RequiredFloat(value.source, value.text);
    Say(" - Ifgrm invalid value: ...... %s", value.Text());
    return phase;
}

RESULT_IMAGES AllocateResultImages(const REQUEST& request, const OUTPUT_SIZES& sizes, const SLAB_PLAN& slabs,
                                   float initial_phase) {
    RESULT_IMAGES images;
    const IMAGE_SIZE area = InMemory(slabs, sizes.simulated, 1);
    const IMAGE_SIZE earth = InMemory(slabs, sizes.earth, request.factors.earth.y);
    Say(" - Simulation mask allocation ");
    Allocate(images.mask, area, PIXEL_TYPE::U_INT_8);
    if (request.WantsPhase()) AllocatePhase(images.phase, area, initial_phase);
    if (request.WantsShifts())
        AllocateShifts(
            images, InMemory(slabs, ShiftMatrixSize(sizes.simulated, request.factors.shift), request.factors.shift.y));
    if (request.WantsEarth()) AllocateEarth(images, earth);
    if (request.NeedsHeights()) {
        Say(" - Radar DEM matrix allocation         (Get Memory)");
        Allocate(images.height, earth, PIXEL_TYPE::FLT_6);
    }
    if (request.NeedsNormals()) {
        Say(" - Terrain normal matrixes allocation  (Get Memory)");
        for (MEM_MGR& image : images.normal) Allocate(image, earth, PIXEL_TYPE::FLT_6);
    }
    return images;
}
