#include "app/simulation_state.h"

#include "app/products/flag_product.h"
#include "app/products/wanted_products.h"
#include "app/request/run_files.h"
#include "app/scene/border_in_dem.h"
#include "app/scene/extension_in_dem.h"
#include "app/scene/kernel_scene.h"
#include "app/scene/scene_meets_dem.h"
#include "app/scene/slave_frame.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/disk_room.h"

namespace {

SCENE_IN_DEM Locate(const REQUEST& request, const ACQUISITIONS& acquisitions, const ACQUISITION_SCENE& master,
                    const DEM_GRID& dem) {
    const IMAGE_TO_DEM locate(acquisitions, dem);
    SCENE_IN_DEM place = LocateSimulationArea(master, locate, dem);
    SayPlace(place, acquisitions);
    RequireCommonCells(place, dem, request, CornersOf(master, locate.Mirrored()));
    RequireDemUnderExtension(request, acquisitions.image, master, locate, dem);
    return place;
}

PRODUCT_WRITER OpenProducts(const REQUEST& request, const ACQUISITIONS& acquisitions, const OUTPUT_SIZES& sizes) {
    CheckFilesOfRun(request, acquisitions);
    std::vector<PRODUCT_REQUEST> products = WantedProducts(request, acquisitions.image, sizes);
    if (request.only_looks) {
        RequireRoomForAll(products);
        products.clear();
    }
    const VIEW_GEOMETRY geometry = {acquisitions.look_sign, acquisitions.ellipsoid.equatorial_m,
                                    acquisitions.ellipsoid.polar_m};
    return {products, acquisitions.image, sizes, request.shifts.relative, geometry};
}

/// Told before the simulation, judged by nobody.
void LookAtBorder(const SIMULATION_STATE& state) {
    try {
        const IMAGE_TO_DEM locate(state.acquisitions, state.terrain.grid);
        const std::vector<BORDER_PLACE> border =
            PlacesAlongBorder(state.pair.master, locate, state.survey.lowest_m, state.survey.highest_m);
        WarnWhereDemEnds(border, state.terrain.grid, state.request.terrain.dem_file.text);
        WarnAboutForeignSlave(border, state.pair, state.acquisitions);
    } catch (const ERROR_EXCEPTION&) {  // a place without a point on the ground: the simulation may not meet it
    }
}

}  // namespace

SIMULATION_STATE::SIMULATION_STATE(const REQUEST& what_was_asked, RUN_POOLS& pools)
    : request(what_was_asked),
      acquisitions(ReadAcquisitions(request, pools)),
      simulated(SimulatedSize(request, acquisitions)),
      dem_pool(OpenDemPool(request)),
      own_axes(CorrectedPair(request, acquisitions, simulated)),
      terrain(ReadTerrain(request, dem_pool)),
      pair(OnCommonAxis(own_axes, acquisitions)),
      place(Locate(request, acquisitions, pair.master, terrain.grid)),
      valid_heights(ReadValidHeights(request.terrain.valid_heights)),
      initial_phase(ReadInitialPhase(request)),
      survey(SurveyDem(terrain.grid, place.simulated, valid_heights, request.terrain.dem_file.text)),
      sizes(SizeOutputs(request, acquisitions.image, simulated)),
      products(OpenProducts(request, acquisitions, sizes)),
      slabs(PlanSlabs(request, sizes, FlagsMemory_bytes(request, place.simulated, acquisitions.image),
                      !request.only_looks && products.MayBeWrittenEarly())),
      images(AllocateResultImages(request, sizes, slabs, initial_phase)),
      scene(MakeKernelScene(request, acquisitions, pair, terrain, place, images)) {
    LookAtBorder(*this);
}
