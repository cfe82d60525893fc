#include "app/scene/scene_border.h"

#include <algorithm>

#include "app/terrain/terrain_bounds.h"

std::vector<BORDER_PLACE> PlacesAlongBorder(const ACQUISITION_SCENE& master, const IMAGE_TO_DEM& locate,
                                            double lowest_m, double highest_m) {
    constexpr int kSteps = 10;
    const auto between = [](double first, double last, int i) { return first + (last - first) * i / kSteps; };
    lowest_m = std::clamp(lowest_m, kLowestTerrain_m, kHighestTerrain_m);
    highest_m = std::clamp(highest_m, kLowestTerrain_m, kHighestTerrain_m);
    std::vector<BORDER_PLACE> places;
    for (int i = 0; i <= kSteps; ++i) {
        for (int j = 0; j <= kSteps; ++j) {
            if (i % kSteps != 0 && j % kSteps != 0) continue;
            const double azimuth_s = between(master.first_azimuth_time_s, master.last_azimuth_time_s, i);
            const double range_s = between(master.near_range_time_s, master.far_range_time_s, j);
            places.push_back(
                {azimuth_s, range_s, locate(azimuth_s, range_s, lowest_m), locate(azimuth_s, range_s, highest_m)});
        }
    }
    return places;
}
