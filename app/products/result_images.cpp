#include "app/products/result_images.h"

#include <sys/sysinfo.h>

#include <bit>
#include <cstdint>

#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
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

/// Bytes per point of the simulated area, of one shift matrix and of the Earth grids, as far as they are wanted.
double RequiredBytes(const REQUEST& request, const OUTPUT_SIZES& sizes) {
    const auto points = [](const IMAGE_SIZE& size) { return static_cast<double>(size.samples) * size.lines; };
    double bytes = points(sizes.simulated);
    if (request.WantsPhase()) bytes += 4.0 * points(sizes.simulated);
    if (request.WantsShifts()) bytes += 2.0 * 8.0 * points(ShiftMatrixSize(sizes.simulated, request.factors.shift));
    if (request.WantsEarth()) bytes += 3.0 * 8.0 * points(sizes.earth);
    if (request.WantsHeight()) bytes += 4.0 * points(sizes.earth);
    return bytes;
}

/// The system hands out more memory than it has and ends the process when it is touched, without a word of ours.
void RequireMemory(const IMAGE_SIZE& area, double required) {
    struct sysinfo system {};
    if (sysinfo(&system) != 0) return;
    const double available =
        (static_cast<double>(system.totalram) + static_cast<double>(system.totalswap)) * system.mem_unit;
    if (required <= available) return;
    constexpr double kBytesPerGibibyte = 1073741824.0;
    LogAndThrow<ERROR_NO_MEMORY>("the grids of %d samples x %d lines need %.1f GiB of memory, the machine has %.1f GiB",
                                 area.samples, area.lines, required / kBytesPerGibibyte, available / kBytesPerGibibyte);
}

}  // namespace

float ReadInitialPhase(const REQUEST& request) {
    const SOURCED_TEXT& value = request.phase.initial_value;
    if (!value.Given()) return 0.0F;
    const float phase = RequiredFloat(value.source, value.text);
    Say(" - Ifgrm invalid value: ...... %s", value.Text());
    return phase;
}

RESULT_IMAGES AllocateResultImages(const REQUEST& request, const OUTPUT_SIZES& sizes, float initial_phase) {
    RESULT_IMAGES images;
    RequireMemory(sizes.simulated, RequiredBytes(request, sizes));
    Say(" - Simulation mask allocation ");
    Allocate(images.mask, sizes.simulated, PIXEL_TYPE::U_INT_8);
    if (request.WantsPhase()) AllocatePhase(images.phase, sizes.simulated, initial_phase);
    if (request.WantsShifts()) AllocateShifts(images, ShiftMatrixSize(sizes.simulated, request.factors.shift));
    if (request.WantsEarth()) AllocateEarth(images, sizes.earth);
    if (request.WantsHeight()) {
        Say(" - Radar DEM matrix allocation         (Get Memory)");
        Allocate(images.height, sizes.earth, PIXEL_TYPE::FLT_6);
    }
    return images;
}
