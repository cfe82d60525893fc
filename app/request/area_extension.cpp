#include "app/request/area_extension.h"

#include <algorithm>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

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
    constexpr int kMost = std::numeric_limits<int>::max();
    if (sum > kMost)
        LogAndThrow<ERROR_PARAMETER>("sub-sampling factors %d, %d and %d are too large: their sum exceeds %d", shift,
                                     earth, geocoding, kMost);
    return static_cast<int>(sum);
}

}  // namespace

AREA_EXTENSION ExtensionOf(const SUBSAMPLING_FACTORS& factors) {
    const SUBSAMPLING shift = Reach(factors.shift);
    const SUBSAMPLING earth = Reach(factors.earth);
    const SUBSAMPLING geocoding = Reach(factors.geocoding);
    // The sum in the one case and the maximum in the other are both meant: a geocoding grid interpolates in the others.
    if (Adds(geocoding))
        return {true, CheckedSum(shift.x, earth.x, geocoding.x), CheckedSum(shift.y, earth.y, geocoding.y)};
    return {Adds(shift) || Adds(earth), std::max(shift.x, earth.x), std::max(shift.y, earth.y)};
}
