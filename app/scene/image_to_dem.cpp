#include "app/scene/image_to_dem.h"

DEM_POSITION IMAGE_TO_DEM::operator()(double azimuth_time_s, double range_time_s, double height_m) const {
    constexpr double kZeroDoppler = 0.0;
    const ORBIT_OF_POOL& orbit = acquisitions_.master.orbit;
    const ELLIPSOID_RADII& radii = acquisitions_.ellipsoid;
    const GEOLOCATION ground =
        geolocation_fast(orbit.Position(azimuth_time_s), orbit.Velocity(azimuth_time_s), look_sign_, height_m,
                         radii.polar_m, radii.equatorial_m, range_time_s, kZeroDoppler);
    return {ground.longitude_deg, ground.latitude_deg, ground.point_m, LocateInDem(dem_, ground.point_m)};
}
