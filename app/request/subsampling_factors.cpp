#include "app/request/subsampling_factors.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <string>

#include "app/keys/pool_values.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr CONTROL_KEY kForcedCommon = "SHIFT_MATRICES_SUBSAMPLING";
constexpr CONTROL_KEY kForcedRange = "SHIFT_MATRICES_SUBSAMPLING_RG";
constexpr CONTROL_KEY kForcedAzimuth = "SHIFT_MATRICES_SUBSAMPLING_AZ";
constexpr POOL_KEY<int> kPoolRange = "shift_matrices_subsampling_rg";
constexpr POOL_KEY<int> kPoolAzimuth = "shift_matrices_subsampling_az";
constexpr POOL_KEY<int> kGeocodingRange = "geco_sub_factor_range";
constexpr POOL_KEY<int> kGeocodingAzimuth = "geco_sub_factor_azimuth";

/// Base-10 conversion that stops at the first non-digit: a text that is no number gives 0.
int ForcedFactor(CONTROLLER_IFC& controller, CONTROL_KEY key) {
    const SOURCED_TEXT factor = RequiredText(controller, key);
    errno = 0;
    const long long value = std::strtoll(factor.Text(), nullptr, 10);
    if (errno == ERANGE || value > std::numeric_limits<int>::max() || value < std::numeric_limits<int>::min())
        RefuseValue(factor.source, "\"" + factor.text + "\"", "exceeds a 32-bit integer");
    RequireInRange(factor.source, static_cast<int>(value), key.row.range);
    return static_cast<int>(value);
}

SUBSAMPLING AtLeastOne(int x, int y) {
    return {std::max(x, 1), std::max(y, 1)};
}

int EarthFactor(CONTROLLER_IFC& controller, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool, CONTROL_KEY forcing_key,
                POOL_KEY<int> pool_key, const char* forced_line) {
    if (!IsGiven(controller, forcing_key)) return Read<int>(insar_pool, pool_key);
    Log().Message(LOGGING_LEVEL::WARNING, "%s", forced_line);
    const int factor = ForcedFactor(controller, forcing_key);
    insar_pool.Change(forcing_key.row.pool_key, factor);
    return factor;
}

bool HoldsGeocodingFactors(PARAMETER_POOL& insar_pool) {
    return insar_pool.FindKey(kGeocodingRange.row.name) || insar_pool.FindKey(kGeocodingAzimuth.row.name);
}

SUBSAMPLING ForcedSeparately(CONTROLLER_IFC& controller, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Log().Message(LOGGING_LEVEL::WARNING,
                  " - Shift matrices subsampling (rg,az) forced by PCF -> Read from PCF and write to pool");
    const int x = ForcedFactor(controller, kForcedRange);
    const int y = ForcedFactor(controller, kForcedAzimuth);
    insar_pool.Change(kForcedRange.row.pool_key, x);
    insar_pool.Change(kForcedAzimuth.row.pool_key, y);
    return AtLeastOne(x, y);
}

SUBSAMPLING ForcedTogether(CONTROLLER_IFC& controller, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    Log().Message(LOGGING_LEVEL::WARNING,
                  " - Shift matrices subsampling (rg=az) forced by PCF -> Read from PCF and write to pool");
    const int factor = ForcedFactor(controller, kForcedCommon);
    insar_pool.Change(kForcedCommon.row.pool_key, factor);
    return AtLeastOne(factor, factor);
}

SUBSAMPLING OfPool(PARAMETER_POOL& insar_pool) {
    if (!insar_pool.FindKey(kPoolRange.row.name) && !insar_pool.FindKey(kPoolAzimuth.row.name)) {
        Log().Message(LOGGING_LEVEL::DEBUG, " - Shift matrices subsampling (rg=az) read from pool");
        const int factor = Read<int>(insar_pool, "shift_matrices_subsampling");
        return AtLeastOne(factor, factor);
    }
    Log().Message(LOGGING_LEVEL::DEBUG, " - Shift matrices subsampling (rg,az) read from pool");
    const int x = Read<int>(insar_pool, kPoolRange);
    return AtLeastOne(x, Read<int>(insar_pool, kPoolAzimuth));
}

}  // namespace

SUBSAMPLING ReadShiftSubsampling(bool shifts_asked, CONTROLLER_IFC& controller,
                                 PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    if (!shifts_asked && !HoldsGeocodingFactors(insar_pool)) return {};
    if (IsGiven(controller, kForcedRange) || IsGiven(controller, kForcedAzimuth))
        return ForcedSeparately(controller, insar_pool);
    if (IsGiven(controller, kForcedCommon)) return ForcedTogether(controller, insar_pool);
    return OfPool(insar_pool);
}

SUBSAMPLING ReadEarthSubsampling(CONTROLLER_IFC& controller, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    const int x = EarthFactor(controller, insar_pool, "EARTH_MATRICES_SUBSAMPLING_X", "earth_matrices_subsampling_x",
                              " - Earth matrixes subsampling_x forced by PCF -> Read value from PCF, not from pool ");
    const int y = EarthFactor(controller, insar_pool, "EARTH_MATRICES_SUBSAMPLING_Y", "earth_matrices_subsampling_y",
                              " - Earth matrixes subsampling_y forced by PCF -> Read value from PCF, not from pool ");
    return AtLeastOne(x, y);
}

SUBSAMPLING ReadGeocodingSubsampling(PARAMETER_POOL& insar_pool) {
    if (!HoldsGeocodingFactors(insar_pool)) return {};
    const int x = Read<int>(insar_pool, kGeocodingRange);
    return AtLeastOne(x, Read<int>(insar_pool, kGeocodingAzimuth));
}
