#include "simulation/aperture_time.h"

#include <optional>

#include "geometry/constants.h"
#include "geometry/vector_arithmetic.h"
#include "geometry/zero_doppler.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/general_orbit.h"

namespace {

struct DEM_SAMPLE {
    int column;
    int row;
};

VECTOR_3D<double> EarthPosition(const DEM_GRID& dem, const DEM_SAMPLE& sample) {
    VECTOR_3D<double> point_m;
    Get_Earth_Position_From_DEM(dem, sample.column, sample.row, point_m.x, point_m.y, point_m.z);
    return point_m;
}

/// Bandwidth over the Doppler rate 2 (d . A + V . V) / (wavelength R), d from the point to the satellite.
double ApertureAt(const ACQUISITION_SCENE& slave, const VECTOR_3D<double>& point_m, double slave_time_s,
                  double slave_range_m) {
    const ORBIT_STATE state = slave.orbit.orbit->State(slave_time_s + slave.orbit.offset_s);
    const double curvature = DotProduct(state.position_m - point_m, state.acceleration_m_s2) +
                             DotProduct(state.velocity_m_s, state.velocity_m_s);
    if (!(curvature > 0.0)) return 0.0;
    return 2.0 * (slave_range_m / kSpeedOfLight) * 0.25 * slave.azimuth_bandwidth_hz * kSpeedOfLight * kSpeedOfLight /
           (curvature * slave.carrier_frequency_hz);
}

}  // namespace

double ReferenceAperture(const SCENE& scene) {
    const ACQUISITION_SCENE& master = scene.master;
    const ACQUISITION_SCENE& slave = scene.slave;
    const double middle_s = 0.5 * (master.first_azimuth_time_s + master.last_azimuth_time_s);

    const DEM_SAMPLE dem_centre = {static_cast<int>(scene.dem.columns * 0.5), static_cast<int>(scene.dem.rows * 0.5)};
    const VECTOR_3D<double> point_m = EarthPosition(scene.dem, dem_centre);
    const std::optional<ZERO_DOPPLER> towards_master = ZeroDopplerInsideData(master.orbit, point_m, middle_s);
    if (towards_master) {
        const std::optional<ZERO_DOPPLER> towards_slave =
            ZeroDopplerInsideData(slave.orbit, point_m, towards_master->time_s);
        if (towards_slave) return ApertureAt(slave, point_m, towards_slave->time_s, towards_slave->range_m);
    }

    const DEM_RANGE& area = scene.simulated;
    const DEM_SAMPLE area_centre = {(area.first_column + area.last_column) / 2, (area.first_row + area.last_row) / 2};
    Log().Message(
        LOGGING_LEVEL::DEBUG,
        "bistatic solution: the DEM's centre lies outside the orbits' data, the reference point is column %d, "
        "row %d",
        area_centre.column, area_centre.row);
    const VECTOR_3D<double> area_point_m = EarthPosition(scene.dem, area_centre);
    double range_m = 0.0;
    const double master_time_s = CalcSlaveTime(master.orbit, area_point_m, &range_m, middle_s);
    const double slave_time_s = CalcSlaveTime(slave.orbit, area_point_m, &range_m, master_time_s);
    return ApertureAt(slave, area_point_m, slave_time_s, range_m);
}

void CheckAperture(const SCENE& scene, double aperture_s) {
    const double data_s = scene.slave.orbit.orbit->LastTime() - scene.slave.orbit.orbit->FirstTime();
    if (aperture_s > 0.0 && aperture_s <= data_s) return;
    LogAndThrow<ERROR_PARAMETER>(
        "bistatic solution: aperture time %g s of the slave is not above 0 and within its orbit's data of "
        "%g s (az_bandwidth %g Hz, radar_frequency %g Hz)",
        aperture_s, data_s, scene.slave.azimuth_bandwidth_hz, scene.slave.carrier_frequency_hz);
}
