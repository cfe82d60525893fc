#include "app/scene/extension_in_dem.h"

#include <algorithm>

#include "app/scene/scene_meets_dem.h"
#include "app/terrain/terrain_bounds.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

/// From one height to the other the place moves along a nearly straight line: with both ends off the same edge no
/// place between them lies in the DEM.
bool LieOffOneEdge(const POINT<double>& a, const POINT<double>& b, const DEM_GRID& dem) {
    return std::max(a.x, b.x) < 0.0 || std::min(a.x, b.x) > dem.columns - 1 || std::max(a.y, b.y) < 0.0 ||
           std::min(a.y, b.y) > dem.rows - 1;
}

}  // namespace

void RequireDemUnderExtension(const REQUEST& request, const IMAGE_SIZE& image, const ACQUISITION_SCENE& master,
                              const IMAGE_TO_DEM& locate, const DEM_GRID& dem) {
    const AREA_EXTENSION& extension = request.extension;
    if (extension.x <= image.samples && extension.y <= image.lines) return;
    const auto last_pixel = [&](double height_m) {
        return locate(master.last_azimuth_time_s, master.far_range_time_s, height_m).grid;
    };
    if (!LieOffOneEdge(last_pixel(kLowestTerrain_m), last_pixel(kHighestTerrain_m), dem)) return;
    const SUBSAMPLING_FACTORS& factors = request.factors;
    WarnAboutMissingPoint(image.samples + extension.x - 1, image.lines + extension.y - 1);
    LogAndThrow<ERROR_PARAMETER>(
        "sub-sampling factors (shift %d x %d, earth %d x %d, geocoding %d x %d) beyond the image of %d x %d pixels: "
        "the "
        "area that they extend does not lie in the DEM %s",
        factors.shift.x, factors.shift.y, factors.earth.x, factors.earth.y, factors.geocoding.x, factors.geocoding.y,
        image.samples, image.lines, request.terrain.dem_file.Text());
}
