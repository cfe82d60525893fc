#include "lib/baselib/sidecar/product_kind.h"

#include <algorithm>

namespace {

constexpr PRODUCT_KIND kKinds[] = {
    {PRODUCT::SIMU_PHASE, "SIMU_PHASE", "simulated phase", "rad"},
    {PRODUCT::RG_COREG, "RG_COREG", "position in slave, range", "px"},
    {PRODUCT::AZ_COREG, "AZ_COREG", "position in slave, azimuth", "px"},
    {PRODUCT::H_EARTH, "H_EARTH", "terrain height", "m"},
    {PRODUCT::X_EARTH, "X_EARTH", "Earth-fixed x, less offset", "m"},
    {PRODUCT::Y_EARTH, "Y_EARTH", "Earth-fixed y, less offset", "m"},
    {PRODUCT::Z_EARTH, "Z_EARTH", "Earth-fixed z, less offset", "m"},
};

}  // namespace

std::span<const PRODUCT_KIND> ProductKinds() {
    return kKinds;
}

const PRODUCT_KIND& KindOf(PRODUCT product) {
    return kKinds[static_cast<int>(product)];
}

const PRODUCT_KIND* FindProductKind(std::string_view key) {
    const auto* const found = std::ranges::find(kKinds, key, &PRODUCT_KIND::key);
    return found == std::end(kKinds) ? nullptr : found;
}
