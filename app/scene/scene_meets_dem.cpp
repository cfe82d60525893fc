#include "app/scene/scene_meets_dem.h"

#include "app/keys/pool_key.h"
#include "app/say.h"
#include "app/scene/geographic_box.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

const char* Side(double look_sign) {
    return look_sign > 0.0 ? "right" : "left";
}

bool LiesInDem(const SCENE_CORNERS& corners, const DEM_GRID& dem) {
    SPAN x;
    SPAN y;
    for (const DEM_POSITION& corner : corners) {
        x.Add(corner.grid.x);
        y.Add(corner.grid.y);
    }
    return x.least < dem.columns - 1 && x.most > 0.0 && y.least < dem.rows - 1 && y.most > 0.0;
}

}  // namespace

void SayPlace(const SCENE_IN_DEM& place, const ACQUISITIONS& acquisitions) {
    const GEOGRAPHIC_BOX box = BoxAround(place.corners);
    Say(" - Master scene: ............. looks %s, longitude %.6f .. %.6f, latitude %.6f .. %.6f",
        Side(acquisitions.look_sign), box.longitude_deg.least, box.longitude_deg.most, box.latitude_deg.least,
        box.latitude_deg.most);
}

void WarnAboutMissingPoint(int sample, int line) {
    Log().Message(LOGGING_LEVEL::WARNING, "Error: point has not been simulated rg=%d, az=%d", sample, line);
}

void RequireCommonCells(const SCENE_IN_DEM& place, const DEM_GRID& dem, const REQUEST& request,
                        const SCENE_CORNERS& mirrored) {
    const DEM_RANGE& simulated = place.simulated;
    if (simulated.first_row < simulated.last_row && simulated.first_column < simulated.last_column) return;
    const TERRAIN_REQUEST& terrain = request.terrain;
    const POINT<double>& corner = place.area.q1.front();
    WarnAboutMissingPoint(0, 0);
    Explain(
        "the DEM %s (%d columns, %d rows) does not cover the master scene: "
        "its first line at near range lies at column %.1f, row %.1f (edges in %s)",
        terrain.dem_file.Text(), dem.columns, dem.rows, corner.x, corner.y, terrain.dem_pool.Text());
    for (const DEM_POSITION& at : place.corners)
        Explain("a corner of the scene: longitude %.4f, latitude %.4f degrees", at.longitude_deg, at.latitude_deg);
    Explain("the DEM: %s", InDegrees(BoxAround(dem)).c_str());
    if (LiesInDem(mirrored, dem))
        Explain("%s: key \"%s\": with the other direction the scene would lie in the DEM",
                request.pools.slave_pool.Text(), POOL_KEY<STRING>("antenna_look_direction").row.name);
    throw ERROR_PARAMETER();
}
