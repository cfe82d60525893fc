#include "app/request/area_extension.h"

#include <algorithm>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// What the factors add to the area: nothing when they mean no sub-sampling.
SUBSAMPLING Reach(const SUBSAMPLING& factors) {
    return {factors.x == 1 ? 0 : factors.x, factors.y == 1 ? 0 : factors.y};
}

bool Adds(const SUBSAMPLING& reach) {
    return reach.x != 0 || reach.y != 0;
}

int CheckedSum(int shift, int earth, int geocoding) {
    const long long sum = static_cast<long long>(shift) + earth + geocoding;
    if (sum > std::numeric_limits<int>::max()) {
        Log().Message(LOGGING_LEVEL::ALARM, "sub-sampling factors %d, %d and %d are too large: their sum exceeds %d",
                      shift, earth, geocoding, std::numeric_limits<int>::max());
        throw ERROR_PARAMETER();
    }
    return static_cast<int>(sum);
}

void ZeroToOne(SUBSAMPLING& factors) {
    if (factors.x == 0) factors.x = 1;
    if (factors.y == 0) factors.y = 1;
}

}  // namespace

void ComputeAreaExtension(RUN_CONFIGURATION& configuration) {
    const SUBSAMPLING shift = Reach(configuration.shift);
    const SUBSAMPLING earth = Reach(configuration.earth);
    const SUBSAMPLING geocoding = Reach(configuration.geocoding);
    configuration.area_extended = Adds(shift) || Adds(earth) || Adds(geocoding);
    // The sum in the one case and the maximum in the other are both meant: a geocoding grid interpolates in the others.
    if (Adds(geocoding)) {
        configuration.extension_x = CheckedSum(shift.x, earth.x, geocoding.x);
        configuration.extension_y = CheckedSum(shift.y, earth.y, geocoding.y);
    } else {
        configuration.extension_x = std::max(shift.x, earth.x);
        configuration.extension_y = std::max(shift.y, earth.y);
    }
    ZeroToOne(configuration.shift);
    ZeroToOne(configuration.earth);
    ZeroToOne(configuration.geocoding);
}
