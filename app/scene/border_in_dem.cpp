#include "app/scene/border_in_dem.h"

#include <algorithm>

#include "app/scene/geographic_box.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// A hundredth of a cell: a place on the DEM's edge is covered, whatever its coordinates round to.
constexpr double kOnEdge = 0.01;

bool LiesBeyond(double a, double b, int size) {
    return std::max(a, b) < -kOnEdge || std::min(a, b) > size - 1 + kOnEdge;
}

}  // namespace

void WarnWhereDemEnds(const std::vector<BORDER_PLACE>& border, const DEM_GRID& dem, const std::string& dem_file) {
    const auto is_beyond = [&](const BORDER_PLACE& place) {
        const POINT<double>& low = place.lowest.grid;
        const POINT<double>& high = place.highest.grid;
        return LiesBeyond(low.x, high.x, dem.columns) || LiesBeyond(low.y, high.y, dem.rows);
    };
    if (std::ranges::none_of(border, is_beyond)) return;
    const GEOGRAPHIC_BOX there = BoxAround(dem);
    GEOGRAPHIC_BOX needed;
    for (const BORDER_PLACE& place : border) {
        AddInDem(needed, place.lowest.point_m, dem, there);
        AddInDem(needed, place.highest.point_m, dem, there);
    }
    Log().Message(LOGGING_LEVEL::WARNING, "%s ends inside the scene: needed is %s; there is %s", dem_file.c_str(),
                  InDegrees(needed).c_str(), InDegrees(there).c_str());
}
