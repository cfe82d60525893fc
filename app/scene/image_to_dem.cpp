#include "app/scene/image_to_dem.h"

DEM_POSITION IMAGE_TO_DEM::operator()(double azimuth_time_s, double range_time_s, double height_m) const {
    constexpr double kZeroDoppler = 0.0;
    const GEOLOCATION ground = geolocation_fast(
        state_.master.orbit.Position(azimuth_time_s), state_.master.orbit.Velocity(azimuth_time_s),
        state_.look_direction, height_m, state_.polar_radius_m, state_.equatorial_radius_m, range_time_s, kZeroDoppler);
    return {ground.longitude_deg, ground.latitude_deg, ground.point_m, LocateInDem(state_.scene.dem, ground.point_m)};
}
