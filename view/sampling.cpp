#include "view/sampling.h"

#include <algorithm>
#include <cstdint>

namespace {

/// Factors of 0 mean no subsampling, too.
int Factor(PARAMETER_POOL& pool, const char* key) {
    return pool.FindKey(key) ? std::max<std::int32_t>(pool.Get<std::int32_t>(key), 1) : 1;
}

}  // namespace

SAMPLING SamplingOf(PRODUCT product, PARAMETER_POOL& insar_pool) {
    switch (product) {
        case PRODUCT::SIMU_PHASE:
        case PRODUCT::LAYOVER_SHADOW:
            return {};
        case PRODUCT::RG_COREG:
        case PRODUCT::AZ_COREG:
            if (insar_pool.FindKey("shift_matrices_subsampling_rg") ||
                insar_pool.FindKey("shift_matrices_subsampling_az"))
                return {Factor(insar_pool, "shift_matrices_subsampling_rg"),
                        Factor(insar_pool, "shift_matrices_subsampling_az")};
            return {Factor(insar_pool, "shift_matrices_subsampling"), Factor(insar_pool, "shift_matrices_subsampling")};
        default:
            return {Factor(insar_pool, "earth_matrices_subsampling_x"),
                    Factor(insar_pool, "earth_matrices_subsampling_y")};
    }
}
