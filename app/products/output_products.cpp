#include "app/products/output_products.h"

#include <algorithm>
#include <cstring>

#include "app/say.h"
#include "simulation/dem2phase.h"
#include "simulation/perturbation_file.h"

namespace {

/// The mask alone: a slab without gaps leaves no pixel of the slab before it.
void ClearMask(const GRID_VIEW<unsigned char>& mask) {
    std::memset(mask.data, 0, static_cast<std::size_t>(mask.row_stride) * static_cast<std::size_t>(mask.rows));
}

/// The offsets of the Earth files are taken at the centre, before any of their rows can be written.
void FindEarthOffsets(SIMULATION_STATE& state, const DEM_LINES& dem_lines) {
    const int centre = state.sizes.earth.lines / 2 * state.request.factors.earth.y;
    SCENE scene = SceneOfLines(state.scene, dem_lines, centre, centre + 1);
    scene.image.phase_rad = {};
    scene.shifts = {};
    SimulateScene(scene);
    ClearMask(scene.image.mask);
    state.products.FixEarthOffsets(scene.earth);
}

COVERAGE_GAP SimulateSlabs(SIMULATION_STATE& state) {
    const DEM_LINES dem_lines(state.scene);
    if (state.request.WantsEarth()) FindEarthOffsets(state, dem_lines);
    COVERAGE_GAP gap;
    const int lines = state.sizes.simulated.lines;
    for (int first = 0; first < lines; first += state.slabs.lines) {
        const SCENE scene = SceneOfLines(state.scene, dem_lines, first, std::min(first + state.slabs.lines, lines));
        if (first > 0) ClearMask(scene.image.mask);
        SimulateScene(scene);
        gap.Add(scene.image.mask);
        if (gap.IsEmpty()) state.products.WriteSlab(scene);
    }
    return gap;
}

void WritePhase(SIMULATION_STATE& state) {
    if (state.slabs.IsWholeImage()) state.products.WritePhase(state.scene.image);
}

/// Columns 0 to N - X - 1 and lines 0 to L - Y - 1: the extension lies at the far and late side. Copy and output go
/// band by band together.
void SaveCroppedPhase(SIMULATION_STATE& state) {
    Say("    - Modality : Border elimination due to subsampling");
    Say("      a. Memory initialization (GetMemory)");
    Say("      b. Output copy with crop (Multithreaded)");
    if (state.slabs.IsWholeImage()) state.products.WriteCroppedPhase(state.images.phase);
    Say("      c. Output to file        (SaveSunRasterFile)");
}

void SavePhase(SIMULATION_STATE& state) {
    Say(" 1. Output of simulated phase");
    if (!state.request.WantsPhase()) {
        Say("    not required");
    } else if (state.request.extension.extended) {
        SaveCroppedPhase(state);
    } else {
        Say("    - Modality : Direct output to file save ");
        Say("      a. Output to file        (SaveSunRasterFile)");
        WritePhase(state);
    }
}

void SaveShifts(SIMULATION_STATE& state) {
    Say(" 2. Output of range and azimuth shift maps");
    if (!state.request.WantsShifts()) return Say("    not required");
    const PRODUCT_WRITER& products = state.products;
    for (const PRODUCT_FILE* file : {&products.RangeShifts(), &products.AzimuthShifts()}) {
        Say("    save: %s", file->Path().c_str());
        file->LogCreation();
    }
    if (state.slabs.IsWholeImage()) state.products.WriteShifts(state.scene.shifts);
}

void SaveHeight(SIMULATION_STATE& state) {
    Say(" 3. Output of radar DEM");
    if (!state.request.WantsHeight()) return Say("    not required");
    Say("    save: %s", state.request.earth.height_file.Text());
    if (state.slabs.IsWholeImage()) state.products.WriteHeight(state.scene.earth);
}

void SaveEarth(SIMULATION_STATE& state, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Say(" 4. Output of Earth files");
    if (!state.request.WantsEarth()) return Say("    not required");
    constexpr const char* kTitles[] = {"    a. x Earth file ", "    b. y Earth file ", "    c. z Earth file "};
    constexpr const char* kOffsetKeys[] = {"x_earth_offset", "y_earth_offset", "z_earth_offset"};
    PRODUCT_WRITER& products = state.products;
    if (state.slabs.IsWholeImage()) products.FixEarthOffsets(state.scene.earth);
    Say("    center_x : %d", state.sizes.earth.samples / 2);
    Say("    center_y : %d", state.sizes.earth.lines / 2);
    for (int axis = 0; axis < 3; ++axis) {
        Say("%s", kTitles[axis]);
        Say("       save: %s", products.Earth(axis).Path().c_str());
        LogPerturbationFile(products.Earth(axis), products.EarthOffset(axis));
        if (state.slabs.IsWholeImage()) products.WriteEarth(state.scene.earth, axis);
        insar_pool.Change(kOffsetKeys[axis], products.EarthOffset(axis));
    }
}

}  // namespace

COVERAGE_GAP SimulateImage(SIMULATION_STATE& state) {
    if (!state.slabs.IsWholeImage()) return SimulateSlabs(state);
    SimulateScene(state.scene);
    return {};
}

void SaveProducts(SIMULATION_STATE& state, COVERAGE_GAP gap, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    if (state.slabs.IsWholeImage()) gap.Add(state.scene.image.mask);
    RequireCoverage(state, gap);
    SavePhase(state);
    SaveShifts(state);
    SaveHeight(state);
    SaveEarth(state, insar_pool);
    state.products.Place();
}
