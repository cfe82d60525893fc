#include "app/products/output_products.h"

#include "app/products/coverage_check.h"
#include "app/products/earth_files.h"
#include "app/products/shift_maps.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/copy_mem_mgr.h"

namespace {

constexpr mode_t kPermissions = 0666;  // before the process's file-creation mask

void Say(const char* line) {
    Log().Message(LOGGING_LEVEL::INFO, "%s", line);
}

/// Columns 0 to N - X - 1 and lines 0 to L - Y - 1: the extension lies at the far and late side.
void SaveCroppedPhase(SIMULATION_STATE& state) {
    Say("    - Modality : Border elimination due to subsampling");
    Say("      a. Memory initialization (GetMemory)");
    MEM_MGR cropped;
    cropped.Allocate(0, 0, state.simulation.samples - state.configuration.extension_x - 1LL,
                     state.simulation.lines - state.configuration.extension_y - 1LL, PIXEL_TYPE::FLT_6);
    Say("      b. Output copy with crop (Multithreaded)");
    CopyMemMgr(state.phase, cropped);
    Say("      c. Output to file        (SaveSunRasterFile)");
    cropped.SaveSunRasterFile(state.configuration.phase_file, kPermissions);
}

void SavePhase(SIMULATION_STATE& state) {
    Say(" 1. Output of simulated phase");
    if (!state.configuration.WantsPhase()) {
        Say("    not required");
    } else if (state.configuration.area_extended) {
        SaveCroppedPhase(state);
    } else {
        Say("    - Modality : Direct output to file save ");
        Say("      a. Output to file        (SaveSunRasterFile)");
        state.phase.SaveSunRasterFile(state.configuration.phase_file, kPermissions);
    }
}

void SaveShifts(SIMULATION_STATE& state) {
    Say(" 2. Output of range and azimuth shift maps");
    if (state.configuration.WantsShifts()) {
        SaveShiftMaps(state);
    } else {
        Say("    not required");
    }
}

void SaveHeight(SIMULATION_STATE& state) {
    Say(" 3. Output of radar DEM");
    if (!state.configuration.WantsHeight()) {
        Say("    not required");
        return;
    }
    Log().Message(LOGGING_LEVEL::INFO, "    save: %s", state.configuration.height_file.c_str());
    state.height.SaveSunRasterFile(state.configuration.height_file, kPermissions);
}

void SaveEarth(SIMULATION_STATE& state) {
    Say(" 4. Output of Earth files");
    if (state.configuration.WantsEarth()) {
        SaveEarthFiles(state);
    } else {
        Say("    not required");
    }
}

}  // namespace

void SaveProducts(SIMULATION_STATE& state) {
    CheckCoverage(state);
    SavePhase(state);
    SaveShifts(state);
    SaveHeight(state);
    SaveEarth(state);
}
