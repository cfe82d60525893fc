#include "app/products/result_images.h"

#include <sys/sysinfo.h>

#include <bit>
#include <cstdint>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/initialize_mem_mgr.h"

namespace {

void Say(const char* line) {
    Log().Message(LOGGING_LEVEL::INFO, "%s", line);
}

void Allocate(MEM_MGR& image, const IMAGE_SIZE& size, PIXEL_TYPE pixel_type) {
    image.Allocate(0, 0, size.samples - 1LL, size.lines - 1LL, pixel_type);
}

void AllocatePhase(SIMULATION_STATE& state) {
    Say(" - Simulated phase allocation ");
    Say("   a. Mem allocate simu_phase          (GetMemory) ");
    Allocate(state.phase, state.simulation, PIXEL_TYPE::FLT_6);
    Say("   b. Value initialize of simu_phase   (Multithread) ");
    InitializeMemMgr(state.phase, std::bit_cast<std::uint32_t>(state.invalid_phase.value_or(0.0F)));
}

/// The matrices in memory hold every pixel that is a multiple of the factors, also where that is more than the output
/// file.
IMAGE_SIZE ShiftMatrixSize(const SIMULATION_STATE& state) {
    const SUBSAMPLING& factors = state.configuration.shift;
    return {(state.simulation.samples - 1) / factors.x + 1, (state.simulation.lines - 1) / factors.y + 1};
}

void AllocateShifts(SIMULATION_STATE& state) {
    const IMAGE_SIZE size = ShiftMatrixSize(state);
    constexpr std::uint32_t kZero = 0;
    Say(" - Range shift matrix allocation ");
    Say("   a. Mem initialize of rg_position    (Get Memory)");
    Allocate(state.range_shift, size, PIXEL_TYPE::FLT_15);
    Say("   b. Value initialize of rg_mapping   (Multithread)");
    InitializeMemMgr(state.range_shift, kZero);
    Say(" - Azimuth shift matrix allocation ");
    Say("   a. Mem initialize of az_position    (Get Memory)");
    Allocate(state.azimuth_shift, size, PIXEL_TYPE::FLT_15);
    Say("   b. Value initialize of az_position  (Multithread)");
    InitializeMemMgr(state.azimuth_shift, kZero);
}

void AllocateEarth(SIMULATION_STATE& state) {
    Say(" - Earth matrixes allocation ");
    Say("   a. x earth matrix                   (Get Memory)");
    Allocate(state.x_earth, state.earth_output, PIXEL_TYPE::FLT_15);
    Say("   b. y earth matrix                   (Get Memory)");
    Allocate(state.y_earth, state.earth_output, PIXEL_TYPE::FLT_15);
    Say("   c. z earth matrix                   (Get Memory)");
    Allocate(state.z_earth, state.earth_output, PIXEL_TYPE::FLT_15);
}

/// Bytes per point of the simulated area, of one shift matrix and of the Earth grids, as far as they are wanted.
double RequiredBytes(const SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    const auto points = [](const IMAGE_SIZE& size) { return static_cast<double>(size.samples) * size.lines; };
    double bytes = points(state.simulation);
    if (configuration.WantsPhase()) bytes += 4.0 * points(state.simulation);
    if (configuration.WantsShifts()) bytes += 2.0 * 8.0 * points(ShiftMatrixSize(state));
    if (configuration.WantsEarth()) bytes += 3.0 * 8.0 * points(state.earth_output);
    if (configuration.WantsHeight()) bytes += 4.0 * points(state.earth_output);
    return bytes;
}

/// The system hands out more memory than it has and ends the process when it is touched, without a word of ours.
void RequireMemory(const SIMULATION_STATE& state) {
    struct sysinfo system {};
    if (sysinfo(&system) != 0) return;
    const double available =
        (static_cast<double>(system.totalram) + static_cast<double>(system.totalswap)) * system.mem_unit;
    const double required = RequiredBytes(state);
    if (required <= available) return;
    constexpr double kBytesPerGibibyte = 1073741824.0;
    Log().Message(
        LOGGING_LEVEL::ALARM, "the grids of %d samples x %d lines need %.1f GiB of memory, the machine has %.1f GiB",
        state.simulation.samples, state.simulation.lines, required / kBytesPerGibibyte, available / kBytesPerGibibyte);
    throw ERROR_NO_MEMORY();
}

}  // namespace

void AllocateResultImages(SIMULATION_STATE& state) {
    const RUN_CONFIGURATION& configuration = state.configuration;
    RequireMemory(state);
    Say(" - Simulation mask allocation ");
    Allocate(state.mask, state.simulation, PIXEL_TYPE::U_INT_8);
    if (configuration.WantsPhase()) AllocatePhase(state);
    if (configuration.WantsShifts()) AllocateShifts(state);
    if (configuration.WantsEarth()) AllocateEarth(state);
    if (configuration.WantsHeight()) {
        Say(" - Radar DEM matrix allocation         (Get Memory)");
        Allocate(state.height, state.earth_output, PIXEL_TYPE::FLT_6);
    }
}
