#include "app/acquisition/acquisitions.h"

#include <cmath>
#include <string>
#include <utility>

#include "app/acquisition/look_direction.h"
#include "app/keys/mistyped_pool_keys.h"
#include "app/keys/pool_values.h"
#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

// Places in the list "dx dy dz rx ry rz scale a b" of the key ellipsoid_parameters.
constexpr int kEquatorialRadiusIndex = 7;
constexpr int kPolarRadiusIndex = 8;

ELLIPSOID_RADII ReadEllipsoid(PARAMETER_POOL& pool) {
    constexpr POOL_KEY<ARRAY<double>> kKey = "ellipsoid_parameters";
    const VALUE_SOURCE source = SourceOf(pool, kKey);
    const auto list = ReadUnchecked<ARRAY<double>>(pool, kKey);
    if (list.First() > kEquatorialRadiusIndex || list.First() + list.Count() <= kPolarRadiusIndex)
        RefuseValue(source, "of " + std::to_string(list.Count()) + " elements",
                    "has no indices 7 and 8 (equatorial and polar radius in metres)");
    const ELLIPSOID_RADII radii{list[kEquatorialRadiusIndex], list[kPolarRadiusIndex]};
    RequireInRange(source, radii.equatorial_m, kKey.row.range);
    RequireInRange(source, radii.polar_m, kKey.row.range);
    if (radii.polar_m > radii.equatorial_m)
        RefuseValue(source, radii.polar_m, "at index 8 (polar radius) is above index 7 (equatorial radius)");
    return radii;
}

IMAGE_SIZE ReadSize(PARAMETER_POOL& pool) {
    const int samples = Read<int>(pool, "n_samples");
    return {samples, Read<int>(pool, "n_lines")};
}

/// Serves a WARNING alone: a size that is none counts as not told.
IMAGE_SIZE SlaveSize(PARAMETER_POOL& slave_pool, IMAGE_SIZE size) {
    const auto take = [&](const char* key, int& value) {
        if (!slave_pool.FindKey(key)) return;
        const int told = slave_pool.Get<int>(key);
        if (told > 0) value = told;
    };
    take(POOL_KEY<int>("n_samples").row.name, size.samples);
    take(POOL_KEY<int>("n_lines").row.name, size.lines);
    return size;
}

void SayPool(const PARAMETER_POOL& pool) {
    Say(" - Reading parameter pool: ....%s", pool.FileName().c_str());
}

void SayParameterMode(bool permanent_scatterer) {
    Say("%s", permanent_scatterer ? "   * Permanent scatterer parameter mode" : "   * Std. InSAR parameter mode");
    Say(" ");
}

ACQUISITION ReadOwnParameters(PARAMETER_POOL& pool, ORBIT_OF_POOL orbit, bool permanent_scatterer) {
    ACQUISITION acquisition{.pool = pool.FileName(), .orbit = std::move(orbit)};
    if (permanent_scatterer) {
        acquisition.oversampling = ReadUnchecked<double>(pool, "oversampling");
        acquisition.start.azimuth_time_s = Read<double>(pool, "first_az_time");
        acquisition.start.range_time_s = Read<double>(pool, "first_rg_time");
    }
    acquisition.pool_prf_hz = Read<double>(pool, "prf");
    acquisition.azimuth_bandwidth_hz = Read<double>(pool, "az_bandwidth");
    acquisition.pool_rsf_hz = Read<double>(pool, "range_sampling_frequency");
    acquisition.carrier_frequency_hz = Read<double>(pool, "radar_frequency");
    return acquisition;
}

/// Standard mode: the InSAR pool tells when both images start.
void ReadStarts(ACQUISITION& master, ACQUISITION& slave, PARAMETER_POOL& insar_pool) {
    master.start.azimuth_time_s = Read<double>(insar_pool, "master_first_az_time");
    slave.start.azimuth_time_s = Read<double>(insar_pool, "slave_first_az_time");
    master.start.range_time_s = Read<double>(insar_pool, "master_first_rg_time");
    slave.start.range_time_s = Read<double>(insar_pool, "slave_first_rg_time");
}

/// Far from the reference time a double loses what the products need.
void CountFromNearbySecond(ACQUISITION& acquisition) {
    acquisition.start.azimuth_time_s -= acquisition.orbit.CountFromNearbySecond();
}

/// Both must agree before either is looked at more closely: a NaN differs from everything.
void CheckOversampling(const ACQUISITION& master, const ACQUISITION& slave) {
    constexpr POOL_KEY<double> kKey = "oversampling";
    const bool comparable = !std::isnan(master.oversampling) && !std::isnan(slave.oversampling);
    if (!comparable || master.oversampling != slave.oversampling) {
        Explain("oversampling of master and slave are different: %f != %f", master.oversampling, slave.oversampling);
        RefuseValue({slave.pool, kKey.row.name}, slave.oversampling, "is not that of " + master.pool);
    }
    RequireInRange({master.pool, kKey.row.name}, master.oversampling, kKey.row.range);
}

/// @param name  six characters wide
void SayRates(const ACQUISITION& acquisition, const char* name) {
    Say("   * %s prf: ............. %f [Hz]", name, acquisition.pool_prf_hz);
    Say("   * %s az_bandwidth: .... %f [Hz] ", name, acquisition.azimuth_bandwidth_hz);
    Say("   * %s rsf: ............. %f [Hz]", name, acquisition.pool_rsf_hz);
    Say("   * adapted %s prf: ..... %f [Hz]", name, acquisition.AdaptedPrf_hz());
    Say("   * adapted %s rsf: ..... %f [Hz]", name, acquisition.AdaptedRsf_hz());
}

AZIMUTH_SHIFT_CORRECTION ReadCorrection(const OBSERVATION_MODE& mode, PARAMETER_POOL& slave_pool) {
    if (!mode.IsSinglePass()) {
        Say(" Korvath MONOSTATIC mode");
        return {};
    }
    Say(" Korvath BISTATIC mode: Reading azimuth-shift correction polynomial ");
    const auto coefficients = Read<ARRAY<double>>(slave_pool, "focussed_slow_time_corr_poly_coefficients");
    const double reference_s = Read<double>(slave_pool, "focussed_slow_time_corr_poly_fast_time_reference");
    // The file format wants it; the correction is a function of the travel time alone.
    static_cast<void>(Read<double>(slave_pool, "focussed_slow_time_corr_poly_relative_time_reference"));
    return {{coefficients.begin(), coefficients.end()}, reference_s};
}

ORBIT_OF_POOL ReadOrbit(PARAMETER_POOL& pool) {
    ORBIT_OF_POOL orbit;
    orbit.ReadFromParameterPool(pool);
    return orbit;
}

}  // namespace

ACQUISITIONS ReadAcquisitions(const REQUEST& request, RUN_POOLS& pools) {
    const bool scatterers = request.permanent_scatterer;
    ORBIT_OF_POOL master_orbit = ReadOrbit(pools.master);
    ORBIT_OF_POOL slave_orbit = ReadOrbit(pools.slave);
    const OBSERVATION_MODE mode = ObservationModeOf(request.observation_mode);
    Say(" - Observation mode: ......... %s", mode.text.c_str());
    Log().Message(LOGGING_LEVEL::TRACE, "start reading parameter pools");
    SayPool(pools.master);
    const ELLIPSOID_RADII ellipsoid = ReadEllipsoid(pools.master);
    SayParameterMode(scatterers);
    IMAGE_SIZE image;
    if (scatterers) image = ReadSize(pools.master);
    ACQUISITION master = ReadOwnParameters(pools.master, std::move(master_orbit), scatterers);
    SayPool(pools.slave);
    ACQUISITION slave = ReadOwnParameters(pools.slave, std::move(slave_orbit), scatterers);
    if (!scatterers) {
        image = ReadSize(pools.insar);
        ReadStarts(master, slave, pools.insar);
    }
    CountFromNearbySecond(master);
    CountFromNearbySecond(slave);
    CheckOversampling(master, slave);
    Say(" - Adapt sampling frequ. for oversampling of: %f", master.oversampling);
    SayRates(master, "master");
    SayRates(slave, "slave ");
    const AZIMUTH_SHIFT_CORRECTION correction = ReadCorrection(mode, pools.slave);
    const double look_sign = ReadLookSign(pools.master, pools.slave);
    Say(" ");
    Log().Message(LOGGING_LEVEL::TRACE, "finished reading parameter pools");
    WarnAboutMistypedKeys(pools.master, kMasterPool);
    WarnAboutMistypedKeys(pools.slave, kSlavePool);
    const IMAGE_SIZE slave_image = SlaveSize(pools.slave, image);
    return {mode, std::move(master), std::move(slave), image, ellipsoid, correction, look_sign, slave_image};
}
