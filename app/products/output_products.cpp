#include "app/products/output_products.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "app/say.h"
#include "app/terrain/terrain_bounds.h"
#include "simulation/dem2phase.h"
#include "simulation/perturbation_file.h"

namespace {

/// The mask alone: a slab without gaps leaves no pixel of the slab before it.
void ClearMask(const GRID_VIEW<unsigned char>& mask) {
    std::memset(mask.data, 0, static_cast<std::size_t>(mask.row_stride) * static_cast<std::size_t>(mask.rows));
}

/// The offsets of the Earth files are taken at the centre, before any of their rows can be written.
SCENE SceneOfEarthCentre(const SIMULATION_STATE& state, const DEM_REACH& dem_reach) {
    const int centre = state.sizes.earth.lines / 2 * state.request.factors.earth.y;
    SCENE scene = SceneOfLines(state.scene, dem_reach, centre, centre + 1);
    scene.image.phase_rad = {};
    scene.shifts = {};
    return scene;
}

std::vector<SCENE> ScenesOfSlabs(const SIMULATION_STATE& state) {
    std::vector<SCENE> scenes;
    const DEM_REACH dem_reach(state.scene);
    if (state.request.WantsEarth()) scenes.push_back(SceneOfEarthCentre(state, dem_reach));
    const int lines = state.sizes.simulated.lines;
    for (int first = 0; first < lines; first += state.slabs.lines)
        scenes.push_back(SceneOfLines(state.scene, dem_reach, first, std::min(first + state.slabs.lines, lines)));
    return scenes;
}

/// All slabs are written but the last, which stays in memory, and those that follow a gap.
SIMULATED_IMAGE SimulateSlabs(SIMULATION_STATE& state) {
    std::vector<SCENE> scenes = ScenesOfSlabs(state);
    const bool centre_first = state.request.WantsEarth();
    SIMULATED_IMAGE image;
    SimulateScenes(scenes, [&](std::size_t i) {
        const SCENE& scene = scenes[i];
        if (centre_first && i == 0) {
            state.products.FixEarthOffsets(scene.earth);
        } else {
            image.gap.Add(scene.image.mask);
            if (i + 1 == scenes.size()) return;
            if (image.gap.IsEmpty()) state.products.WriteSlab(scene, state.slabs.exceeds_limit);
        }
        ClearMask(scene.image.mask);
    });
    image.in_memory = std::move(scenes.back());
    return image;
}

/// Columns 0 to N - X - 1 and lines 0 to L - Y - 1: the extension lies at the far and late side. Copy and output go
/// band by band together.
void SaveCroppedPhase(SIMULATION_STATE& state, const MASTER_GRIDS& grids) {
    Say("    - Modality : Border elimination due to subsampling");
    Say("      a. Memory initialization (GetMemory)");
    Say("      b. Output copy with crop (Multithreaded)");
    state.products.WriteCroppedPhase(grids, state.images.phase);
    Say("      c. Output to file        (SaveSunRasterFile)");
}

void SavePhase(SIMULATION_STATE& state, const MASTER_GRIDS& grids) {
    Say(" 1. Output of simulated phase");
    if (!state.request.WantsPhase()) {
        Say("    not required");
    } else if (state.request.extension.extended) {
        SaveCroppedPhase(state, grids);
    } else {
        Say("    - Modality : Direct output to file save ");
        Say("      a. Output to file        (SaveSunRasterFile)");
        state.products.WritePhase(grids);
    }
}

void SaveShifts(SIMULATION_STATE& state, const SHIFT_GRIDS& grids) {
    Say(" 2. Output of range and azimuth shift maps");
    if (!state.request.WantsShifts()) return Say("    not required");
    PRODUCT_WRITER& products = state.products;
    for (const PRODUCT_FILE* file : {&products.RangeShifts(), &products.AzimuthShifts()}) {
        Say("    save: %s", file->Path().c_str());
        file->LogCreation();
    }
    products.WriteShifts(grids);
}

void SaveHeight(SIMULATION_STATE& state, const EARTH_GRIDS& grids) {
    Say(" 3. Output of radar DEM");
    if (!state.request.WantsHeight()) return Say("    not required");
    Say("    save: %s", state.request.earth.height_file.Text());
    state.products.WriteHeight(grids);
}

void SaveEarth(SIMULATION_STATE& state, const EARTH_GRIDS& grids, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Say(" 4. Output of Earth files");
    if (!state.request.WantsEarth()) return Say("    not required");
    constexpr const char* kTitles[] = {"    a. x Earth file ", "    b. y Earth file ", "    c. z Earth file "};
    constexpr const char* kOffsetKeys[] = {"x_earth_offset", "y_earth_offset", "z_earth_offset"};
    PRODUCT_WRITER& products = state.products;
    if (state.slabs.IsWholeImage()) products.FixEarthOffsets(grids);
    Say("    center_x : %d", state.sizes.earth.samples / 2);
    Say("    center_y : %d", state.sizes.earth.lines / 2);
    for (int axis = 0; axis < 3; ++axis) {
        Say("%s", kTitles[axis]);
        Say("       save: %s", products.Earth(axis).Path().c_str());
        LogPerturbationFile(products.Earth(axis), products.EarthOffset(axis));
        products.WriteEarth(grids, axis);
        insar_pool.Change(kOffsetKeys[axis], products.EarthOffset(axis));
    }
}

/// Says nothing of what was not asked for.
void SaveViews(SIMULATION_STATE& state, const SCENE& in_memory) {
    if (!state.request.WantsViews()) return;
    Say(" 5. Output of views of the satellites");
    for (const SOURCED_TEXT& file : state.request.ViewFiles()) Say("    save: %s", file.Text());
    state.products.Views().Write(in_memory);
}

void PrepareFlags(SIMULATION_STATE& state) {
    const auto terrain = [](double height_m) { return std::clamp(height_m, kLowestTerrain_m, kHighestTerrain_m); };
    state.products.Flags().Prepare(state.scene, {kLowestTerrain_m, kHighestTerrain_m},
                                   terrain(state.survey.highest_m) - terrain(state.survey.lowest_m));
}

void SaveFlags(SIMULATION_STATE& state, const GRID_VIEW<unsigned char>& in_memory) {
    if (!state.request.WantsLayoverShadow()) return;
    Say(" 6. Output of layover and shadow");
    Say("    save: %s", state.request.layover_shadow_file.Text());
    state.products.Flags().WriteRest(in_memory.first_row);
}

}  // namespace

SIMULATED_IMAGE SimulateImage(SIMULATION_STATE& state) {
    PrepareFlags(state);
    if (!state.slabs.IsWholeImage()) return SimulateSlabs(state);
    SimulateScene(state.scene);
    SIMULATED_IMAGE image{{}, state.scene};
    image.gap.Add(state.scene.image.mask);
    return image;
}

void SaveProducts(SIMULATION_STATE& state, const SIMULATED_IMAGE& image, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    RequireCoverage(state, image.gap);
    SavePhase(state, image.in_memory.image);
    SaveShifts(state, image.in_memory.shifts);
    SaveHeight(state, image.in_memory.earth);
    SaveEarth(state, image.in_memory.earth, insar_pool);
    SaveViews(state, image.in_memory);
    SaveFlags(state, image.in_memory.image.mask);
    state.products.Place();
}
