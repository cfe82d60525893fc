#include "app/products/output_products.h"

#include "app/products/coverage_check.h"
#include "app/products/earth_files.h"
#include "app/products/shift_maps.h"
#include "app/say.h"
#include "simulation/copy_mem_mgr.h"

namespace {

constexpr mode_t kPermissions = 0666;  // before the process's file-creation mask

/// Columns 0 to N - X - 1 and lines 0 to L - Y - 1: the extension lies at the far and late side.
void SaveCroppedPhase(const SIMULATION_STATE& state) {
    Say("    - Modality : Border elimination due to subsampling");
    Say("      a. Memory initialization (GetMemory)");
    MEM_MGR cropped;
    cropped.Allocate(0, 0, state.acquisitions.image.samples - 1LL, state.acquisitions.image.lines - 1LL,
                     PIXEL_TYPE::FLT_6);
    Say("      b. Output copy with crop (Multithreaded)");
    CopyMemMgr(state.images.phase, cropped);
    Say("      c. Output to file        (SaveSunRasterFile)");
    cropped.SaveSunRasterFile(state.request.phase.file.text, kPermissions);
}

void SavePhase(const SIMULATION_STATE& state) {
    Say(" 1. Output of simulated phase");
    if (!state.request.WantsPhase()) {
        Say("    not required");
    } else if (state.request.extension.extended) {
        SaveCroppedPhase(state);
    } else {
        Say("    - Modality : Direct output to file save ");
        Say("      a. Output to file        (SaveSunRasterFile)");
        state.images.phase.SaveSunRasterFile(state.request.phase.file.text, kPermissions);
    }
}

void SaveShifts(const SIMULATION_STATE& state) {
    Say(" 2. Output of range and azimuth shift maps");
    if (state.request.WantsShifts()) {
        SaveShiftMaps(state.request, state.sizes.shift, state.scene.shifts);
    } else {
        Say("    not required");
    }
}

void SaveHeight(const SIMULATION_STATE& state) {
    Say(" 3. Output of radar DEM");
    if (!state.request.WantsHeight()) {
        Say("    not required");
        return;
    }
    Say("    save: %s", state.request.earth.height_file.Text());
    state.images.height.SaveSunRasterFile(state.request.earth.height_file.text, kPermissions);
}

void SaveEarth(const SIMULATION_STATE& state, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Say(" 4. Output of Earth files");
    if (state.request.WantsEarth()) {
        SaveEarthFiles(state.request.earth, state.scene.earth, insar_pool);
    } else {
        Say("    not required");
    }
}

}  // namespace

void SaveProducts(const SIMULATION_STATE& state, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    CheckCoverage(state);
    SavePhase(state);
    SaveShifts(state);
    SaveHeight(state);
    SaveEarth(state, insar_pool);
}
