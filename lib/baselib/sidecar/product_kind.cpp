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
    {PRODUCT::LOCAL_INCIDENCE, "LOCAL_INCIDENCE", "incidence angle, terrain", "deg"},
    {PRODUCT::INCIDENCE, "INCIDENCE", "incidence angle, ellipsoid", "deg"},
    {PRODUCT::LINE_OF_SIGHT_E, "LINE_OF_SIGHT_E", "line of sight, east", ""},
    {PRODUCT::LINE_OF_SIGHT_N, "LINE_OF_SIGHT_N", "line of sight, north", ""},
    {PRODUCT::LINE_OF_SIGHT_U, "LINE_OF_SIGHT_U", "line of sight, up", ""},
    {PRODUCT::PERPENDICULAR_BASELINE, "PERPENDICULAR_BASELINE", "perpendicular baseline", "m"},
    {PRODUCT::HEIGHT_OF_AMBIGUITY, "HEIGHT_OF_AMBIGUITY", "height of ambiguity", "m"},
    {PRODUCT::LAYOVER_SHADOW, "LAYOVER_SHADOW", "layover and shadow", "", PIXEL_TYPE::U_INT_8},
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
