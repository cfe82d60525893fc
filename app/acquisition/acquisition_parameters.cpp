#include "app/acquisition/acquisition_parameters.h"

#include <cmath>
#include <string>

#include "app/acquisition/observation_mode.h"
#include "app/keys/refusal.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

// Places in the list "dx dy dz rx ry rz scale a b" of the key ellipsoid_parameters.
constexpr int kEquatorialRadiusIndex = 7;
constexpr int kPolarRadiusIndex = 8;

void ReadEllipsoid(SIMULATION_STATE& state, PARAMETER_POOL& pool) {
    const VALUE_SOURCE source{pool.FileName(), "ellipsoid_parameters"};
    const auto list = pool.Get<ARRAY<double>>(source.key);
    if (list.First() > kEquatorialRadiusIndex || list.First() + list.Count() <= kPolarRadiusIndex)
        RefuseValue(source, "of " + std::to_string(list.Count()) + " elements",
                    "has no indices 7 and 8 (equatorial and polar radius in metres)");
    state.equatorial_radius_m = list[kEquatorialRadiusIndex];
    state.polar_radius_m = list[kPolarRadiusIndex];
    RequirePositive(source, state.equatorial_radius_m);
    RequirePositive(source, state.polar_radius_m);
    if (state.polar_radius_m > state.equatorial_radius_m)
        RefuseValue(source, state.polar_radius_m, "at index 8 (polar radius) is above index 7 (equatorial radius)");
}

void ReadSize(SIMULATION_STATE& state, PARAMETER_POOL& pool) {
    state.image.samples = pool.Get<int>("n_samples");
    state.image.lines = pool.Get<int>("n_lines");
}

void ReadRates(ACQUISITION& acquisition, PARAMETER_POOL& pool) {
    acquisition.prf_hz = pool.Get<double>("prf");
    acquisition.azimuth_bandwidth_hz = pool.Get<double>("az_bandwidth");
    acquisition.range_sampling_frequency_hz = pool.Get<double>("range_sampling_frequency");
    acquisition.radar_frequency_hz = pool.Get<double>("radar_frequency");
}

void ReadAcquisition(SIMULATION_STATE& state, ACQUISITION& acquisition, PARAMETER_POOL& pool) {
    const bool permanent_scatterer = state.configuration.permanent_scatterer;
    Log().Message(LOGGING_LEVEL::INFO, " - Reading parameter pool: ....%s", pool.FileName().c_str());
    if (&acquisition == &state.master) {
        ReadEllipsoid(state, pool);
        Log().Message(LOGGING_LEVEL::INFO, permanent_scatterer ? "   * Permanent scatterer parameter mode"
                                                               : "   * Std. InSAR parameter mode");
        Log().Message(LOGGING_LEVEL::INFO, " ");
        if (permanent_scatterer) ReadSize(state, pool);
    }
    if (permanent_scatterer) {
        acquisition.oversampling = pool.Get<double>("oversampling");
        acquisition.first_azimuth_time_s = pool.Get<double>("first_az_time");
        acquisition.first_range_time_s = pool.Get<double>("first_rg_time");
    }
    ReadRates(acquisition, pool);
}

void ReadStandardParameters(SIMULATION_STATE& state, PARAMETER_POOL& insar_pool) {
    ReadSize(state, insar_pool);
    state.master.first_azimuth_time_s = insar_pool.Get<double>("master_first_az_time");
    state.slave.first_azimuth_time_s = insar_pool.Get<double>("slave_first_az_time");
    state.master.first_range_time_s = insar_pool.Get<double>("master_first_rg_time");
    state.slave.first_range_time_s = insar_pool.Get<double>("slave_first_rg_time");
}

void CheckOversampling(const SIMULATION_STATE& state) {
    const double master = state.master.oversampling;
    const double slave = state.slave.oversampling;
    if (!std::isnan(master) && !std::isnan(slave) && master == slave) return;
    Log().Message(LOGGING_LEVEL::ALARM, "oversampling of master and slave are different: %f != %f", master, slave);
    throw ERROR_PARAMETER();
}

void CheckRates(const ACQUISITION& acquisition, const std::string& pool_name) {
    RequirePositive({pool_name, "oversampling"}, acquisition.oversampling);
    RequirePositive({pool_name, "prf"}, acquisition.prf_hz);
    RequireFinite({pool_name, "az_bandwidth"}, acquisition.azimuth_bandwidth_hz);
    RequirePositive({pool_name, "range_sampling_frequency"}, acquisition.range_sampling_frequency_hz);
    RequirePositive({pool_name, "radar_frequency"}, acquisition.radar_frequency_hz);
}

/// Refuses, before any arithmetic, what no computation could use.
void CheckValues(const SIMULATION_STATE& state, const PARAMETER_POOL& master_pool, const PARAMETER_POOL& slave_pool,
                 const PARAMETER_POOL& insar_pool) {
    CheckRates(state.master, master_pool.FileName());
    CheckRates(state.slave, slave_pool.FileName());
    const bool own = state.configuration.permanent_scatterer;
    const std::string master = own ? master_pool.FileName() : insar_pool.FileName();
    const std::string slave = own ? slave_pool.FileName() : insar_pool.FileName();
    if (state.image.samples < 1) RefuseValue({master, "n_samples"}, std::to_string(state.image.samples), "is below 1");
    if (state.image.lines < 1) RefuseValue({master, "n_lines"}, std::to_string(state.image.lines), "is below 1");
    RequireFinite({master, own ? "first_az_time" : "master_first_az_time"}, state.master.first_azimuth_time_s);
    RequirePositive({master, own ? "first_rg_time" : "master_first_rg_time"}, state.master.first_range_time_s);
    RequireFinite({slave, own ? "first_az_time" : "slave_first_az_time"}, state.slave.first_azimuth_time_s);
    RequirePositive({slave, own ? "first_rg_time" : "slave_first_rg_time"}, state.slave.first_range_time_s);
}

/// @param name  six characters wide
void AdaptRates(ACQUISITION& acquisition, const char* name) {
    Log().Message(LOGGING_LEVEL::INFO, "   * %s prf: ............. %f [Hz]", name, acquisition.prf_hz);
    Log().Message(LOGGING_LEVEL::INFO, "   * %s az_bandwidth: .... %f [Hz] ", name, acquisition.azimuth_bandwidth_hz);
    Log().Message(LOGGING_LEVEL::INFO, "   * %s rsf: ............. %f [Hz]", name,
                  acquisition.range_sampling_frequency_hz);
    acquisition.prf_hz *= acquisition.oversampling;
    acquisition.range_sampling_frequency_hz *= acquisition.oversampling;
    Log().Message(LOGGING_LEVEL::INFO, "   * adapted %s prf: ..... %f [Hz]", name, acquisition.prf_hz);
    Log().Message(LOGGING_LEVEL::INFO, "   * adapted %s rsf: ..... %f [Hz]", name,
                  acquisition.range_sampling_frequency_hz);
}

void ReadCorrectionPolynomial(SIMULATION_STATE& state, PARAMETER_POOL& slave_pool) {
    if (!state.mode.IsSinglePass()) {
        Log().Message(LOGGING_LEVEL::INFO, " Korvath MONOSTATIC mode");
        return;
    }
    Log().Message(LOGGING_LEVEL::INFO, " Korvath BISTATIC mode: Reading azimuth-shift correction polynomial ");
    CORRECTION_POLYNOMIAL& correction = state.correction;
    slave_pool.Get("focussed_slow_time_corr_poly_coefficients", correction.coefficients);
    slave_pool.Get("focussed_slow_time_corr_poly_fast_time_reference", correction.fast_time_reference_s);
    slave_pool.Get("focussed_slow_time_corr_poly_relative_time_reference", correction.relative_time_reference_s);
}

void ReadLookDirection(SIMULATION_STATE& state, PARAMETER_POOL& slave_pool) {
    const std::string text = slave_pool.Get<STRING>("antenna_look_direction").ToStd();
    RequireText(text);
    if (text == "right") {
        state.look_direction = 1.0;
    } else if (text == "left") {
        state.look_direction = -1.0;
    } else {
        Log().Message(LOGGING_LEVEL::ALARM, "Error: Unknown antenna look direction %s", text.c_str());
        throw ERROR_PARAMETER();
    }
}

}  // namespace

void ReadAcquisitionParameters(SIMULATION_STATE& state, PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool,
                               PARAMETER_POOL& insar_pool) {
    state.master.orbit.ReadFromParameterPool(master_pool);
    state.slave.orbit.ReadFromParameterPool(slave_pool);
    state.mode = ObservationModeOf(state.configuration.observation_mode);
    Log().Message(LOGGING_LEVEL::INFO, " - Observation mode: ......... %s", state.mode.text.c_str());
    Log().Message(LOGGING_LEVEL::TRACE, "start reading parameter pools");
    ReadAcquisition(state, state.master, master_pool);
    ReadAcquisition(state, state.slave, slave_pool);
    if (!state.configuration.permanent_scatterer) ReadStandardParameters(state, insar_pool);
    CheckOversampling(state);
    CheckValues(state, master_pool, slave_pool, insar_pool);
    Log().Message(LOGGING_LEVEL::INFO, " - Adapt sampling frequ. for oversampling of: %f", state.master.oversampling);
    AdaptRates(state.master, "master");
    AdaptRates(state.slave, "slave ");
    ReadCorrectionPolynomial(state, slave_pool);
    ReadLookDirection(state, slave_pool);
    Log().Message(LOGGING_LEVEL::INFO, " ");
    Log().Message(LOGGING_LEVEL::TRACE, "finished reading parameter pools");
}
