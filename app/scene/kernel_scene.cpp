#include "app/scene/kernel_scene.h"

namespace {

MASTER_GRIDS MasterGrids(const REQUEST& request, RESULT_IMAGES& images) {
    MASTER_GRIDS grids;
    grids.mask = ViewOf<unsigned char>(images.mask);
    if (request.WantsPhase()) grids.phase_rad = ViewOf<float>(images.phase);
    return grids;
}

SHIFT_GRIDS ShiftGrids(const REQUEST& request, RESULT_IMAGES& images) {
    SHIFT_GRIDS shifts;
    if (!request.WantsShifts()) return shifts;
    shifts.azimuth_factor = request.factors.shift.y;
    shifts.range_factor = request.factors.shift.x;
    shifts.range = ViewOf<double>(images.range_shift);
    shifts.azimuth = ViewOf<double>(images.azimuth_shift);
    return shifts;
}

EARTH_GRIDS EarthGrids(const REQUEST& request, RESULT_IMAGES& images) {
    EARTH_GRIDS earth;
    earth.azimuth_factor = request.factors.earth.y;
    earth.range_factor = request.factors.earth.x;
    if (request.WantsEarth()) {
        earth.x = ViewOf<double>(images.x_earth);
        earth.y = ViewOf<double>(images.y_earth);
        earth.z = ViewOf<double>(images.z_earth);
    }
    if (request.NeedsHeights()) earth.radar_dem = ViewOf<float>(images.height);
    if (request.NeedsNormals())
        for (int axis = 0; axis < 3; ++axis) earth.normal[axis] = ViewOf<float>(images.normal[axis]);
    return earth;
}

}  // namespace

SCENE MakeKernelScene(const REQUEST& request, const ACQUISITIONS& acquisitions, const RADAR_PAIR& pair,
                      const TERRAIN& terrain, const SCENE_IN_DEM& place, RESULT_IMAGES& images) {
    return {.dem = terrain.grid,
            .simulated = place.simulated,
            .area = place.area,
            .master = pair.master,
            .slave = pair.slave,
            .bistatic = acquisitions.mode.IsSinglePass(),
            .correction = acquisitions.correction,
            .image = MasterGrids(request, images),
            .shifts = ShiftGrids(request, images),
            .earth = EarthGrids(request, images)};
}
