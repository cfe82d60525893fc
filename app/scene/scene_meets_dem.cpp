#include "app/scene/scene_meets_dem.h"

#include <algorithm>
#include <cmath>

#include "app/keys/pool_key.h"
#include "app/say.h"
#include "geometry/constants.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// Smallest and largest values.
class SPAN {
  public:
    void Add(double value) {
        least = empty_ ? value : std::min(least, value);
        most = empty_ ? value : std::max(most, value);
        empty_ = false;
    }

    double least = 0.0;
    double most = 0.0;

  private:
    bool empty_ = true;
};

struct BOX {
    SPAN longitude_deg;
    SPAN latitude_deg;
};

/// A scene across Greenwich or 180 degrees has a narrow box, too: longitudes follow the first corner's.
BOX BoxAround(const SCENE_CORNERS& corners) {
    constexpr double kWholeTurn_deg = 360.0;
    BOX box;
    for (const DEM_POSITION& corner : corners) {
        const double turns = std::round((corner.longitude_deg - corners[0].longitude_deg) / kWholeTurn_deg);
        box.longitude_deg.Add(corner.longitude_deg - turns * kWholeTurn_deg);
        box.latitude_deg.Add(corner.latitude_deg);
    }
    return box;
}

BOX BoxAround(const DEM_GRID& dem) {
    BOX box;
    for (const int column : {0, dem.columns - 1}) {
        for (const int row : {0, dem.rows - 1}) {
            const GEOGRAPHIC place = GeographicOfDemSample(dem, column, row);
            box.longitude_deg.Add(place.longitude_rad * kDegreesPerRadian);
            box.latitude_deg.Add(place.latitude_rad * kDegreesPerRadian);
        }
    }
    return box;
}

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

void ExplainBox(const char* what, const BOX& box) {
    Explain("%s: longitude %.4f .. %.4f, latitude %.4f .. %.4f degrees", what, box.longitude_deg.least,
            box.longitude_deg.most, box.latitude_deg.least, box.latitude_deg.most);
}

}  // namespace

void SayPlace(const SCENE_IN_DEM& place, const ACQUISITIONS& acquisitions) {
    const BOX box = BoxAround(place.corners);
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
    ExplainBox("the DEM", BoxAround(dem));
    if (LiesInDem(mirrored, dem))
        Explain("%s: key \"%s\": with the other direction the scene would lie in the DEM",
                request.pools.slave_pool.Text(), POOL_KEY<STRING>("antenna_look_direction").row.name);
    throw ERROR_PARAMETER();
}
