#include "app/request/subsampling_factors.h"

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <string>

#include "app/keys/refusal.h"
#include "lib/baselib/logging/logging.h"

namespace {

void RequireNotNegative(const VALUE_SOURCE& source, int factor) {
    if (factor < 0) RefuseValue(source, std::to_string(factor), "is a negative factor");
}

int FactorOfPool(PARAMETER_POOL& pool, const std::string& key) {
    const int factor = pool.Get<int>(key);
    RequireNotNegative({pool.FileName(), key}, factor);
    return factor;
}

/// Base-10 conversion that stops at the first non-digit: a text that is no number gives 0, which counts as 1 later.
int FactorOfConfiguration(CONTROLLER_IFC& controller, const std::string& key) {
    const std::string text = controller.get_parameter(key);
    const VALUE_SOURCE source{"configuration", key};
    errno = 0;
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    if (errno == ERANGE || value > std::numeric_limits<int>::max() || value < std::numeric_limits<int>::min())
        RefuseValue(source, "\"" + text + "\"", "exceeds a 32-bit integer");
    RequireNotNegative(source, static_cast<int>(value));
    return static_cast<int>(value);
}

int EarthFactor(CONTROLLER_IFC& controller, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool,
                const std::string& forcing_key, const std::string& pool_key, const char* forced_line) {
    if (!controller.parameter_exists(forcing_key)) return FactorOfPool(insar_pool, pool_key);
    Log().Message(LOGGING_LEVEL::WARNING, "%s", forced_line);
    const int factor = FactorOfConfiguration(controller, forcing_key);
    insar_pool.Change(pool_key, factor);
    return factor;
}

bool HoldsGeocodingFactors(PARAMETER_POOL& insar_pool) {
    return insar_pool.FindKey("geco_sub_factor_range") || insar_pool.FindKey("geco_sub_factor_azimuth");
}

}  // namespace

void ReadShiftSubsampling(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller,
                          PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    if (!configuration.WantsShifts() && !HoldsGeocodingFactors(insar_pool)) return;
    SUBSAMPLING& shift = configuration.shift;
    if (controller.parameter_exists("SHIFT_MATRICES_SUBSAMPLING_RG") ||
        controller.parameter_exists("SHIFT_MATRICES_SUBSAMPLING_AZ")) {
        Log().Message(LOGGING_LEVEL::WARNING,
                      " - Shift matrices subsampling (rg,az) forced by PCF -> Read from PCF and write to pool");
        shift.x = FactorOfConfiguration(controller, "SHIFT_MATRICES_SUBSAMPLING_RG");
        shift.y = FactorOfConfiguration(controller, "SHIFT_MATRICES_SUBSAMPLING_AZ");
        insar_pool.Change("shift_matrices_subsampling_rg", shift.x);
        insar_pool.Change("shift_matrices_subsampling_az", shift.y);
    } else if (controller.parameter_exists("SHIFT_MATRICES_SUBSAMPLING")) {
        Log().Message(LOGGING_LEVEL::WARNING,
                      " - Shift matrices subsampling (rg=az) forced by PCF -> Read from PCF and write to pool");
        shift.x = shift.y = FactorOfConfiguration(controller, "SHIFT_MATRICES_SUBSAMPLING");
        insar_pool.Change("shift_matrices_subsampling", shift.x);
    } else if (!insar_pool.FindKey("shift_matrices_subsampling_rg") &&
               !insar_pool.FindKey("shift_matrices_subsampling_az")) {
        Log().Message(LOGGING_LEVEL::DEBUG, " - Shift matrices subsampling (rg=az) read from pool");
        shift.x = shift.y = FactorOfPool(insar_pool, "shift_matrices_subsampling");
    } else {
        Log().Message(LOGGING_LEVEL::DEBUG, " - Shift matrices subsampling (rg,az) read from pool");
        shift.x = FactorOfPool(insar_pool, "shift_matrices_subsampling_rg");
        shift.y = FactorOfPool(insar_pool, "shift_matrices_subsampling_az");
    }
}

void ReadEarthSubsampling(RUN_CONFIGURATION& configuration, CONTROLLER_IFC& controller,
                          PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    configuration.earth.x =
        EarthFactor(controller, insar_pool, "EARTH_MATRICES_SUBSAMPLING_X", "earth_matrices_subsampling_x",
                    " - Earth matrixes subsampling_x forced by PCF -> Read value from PCF, not from pool ");
    configuration.earth.y =
        EarthFactor(controller, insar_pool, "EARTH_MATRICES_SUBSAMPLING_Y", "earth_matrices_subsampling_y",
                    " - Earth matrixes subsampling_y forced by PCF -> Read value from PCF, not from pool ");
}

void ReadGeocodingSubsampling(RUN_CONFIGURATION& configuration, PARAMETER_POOL& insar_pool) {
    if (!HoldsGeocodingFactors(insar_pool)) return;
    configuration.geocoding.x = FactorOfPool(insar_pool, "geco_sub_factor_range");
    configuration.geocoding.y = FactorOfPool(insar_pool, "geco_sub_factor_azimuth");
}
