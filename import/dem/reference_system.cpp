#include "import/dem/reference_system.h"

#include <cmath>

namespace {

bool IsOnWgs84(const OGRSpatialReference& system) {
    constexpr double kSemiMajorAxis_m = 6378137.0;
    constexpr double kInverseFlattening = 298.257223563;
    if (std::abs(system.GetSemiMajor() - kSemiMajorAxis_m) > 1e-3) return false;
    if (std::abs(system.GetInvFlattening() - kInverseFlattening) > 1e-8) return false;
    if (system.GetPrimeMeridian() != 0.0) return false;
    const char* const datum = system.GetAttrValue("DATUM");
    return datum != nullptr && std::string(datum).rfind("WGS_1984", 0) == 0;
}

constexpr double kRadiansPerDegree = 0.017453292519943295;

bool IsInDegrees(const OGRSpatialReference& system) {
    return std::abs(system.GetAngularUnits() - kRadiansPerDegree) < 1e-12;
}

std::string NameOf(const OGRSpatialReference& system, const char* node) {
    const char* const name = system.GetAttrValue(node);
    return name == nullptr ? "" : name;
}

}  // namespace

OGRSpatialReference HorizontalPart(const OGRSpatialReference& system) {
    OGRSpatialReference horizontal(system);
    if (horizontal.IsCompound()) horizontal.StripVertical();
    horizontal.DemoteTo2D(nullptr);
    horizontal.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return horizontal;
}

MAP_REFERENCE MapReferenceOf(const OGRSpatialReference& system) {
    MAP_REFERENCE map;
    const OGRSpatialReference horizontal = HorizontalPart(system);
    const char* const name = horizontal.GetName();
    map.name = name == nullptr ? "unnamed" : name;
    if (!IsOnWgs84(horizontal)) return map;
    if (horizontal.IsGeographic() && IsInDegrees(horizontal)) {
        map.kind = MAP_KIND::GEO;
        return map;
    }
    int northern = 0;
    const int zone = horizontal.IsProjected() ? horizontal.GetUTMZone(&northern) : 0;
    if (zone == 0 || horizontal.GetLinearUnits() != 1.0) return map;
    map.kind = MAP_KIND::UTM;
    map.utm_zone = std::abs(zone);
    map.southern = northern == 0;
    return map;
}

HEIGHTS_OF_FILE HeightsOf(const OGRSpatialReference& system) {
    HEIGHTS_OF_FILE heights;
    if (system.IsVertical() != 0) {
        heights.name = NameOf(system, "VERT_CS");
        const std::string datum = NameOf(system, "VERT_DATUM");
        const char* const code = system.GetAuthorityCode("COMPD_CS|VERT_CS");
        const bool is_egm96 = heights.name.find("EGM96") != std::string::npos ||
                              datum.find("EGM96") != std::string::npos ||
                              (code != nullptr && std::string(code) == "5773");
        const bool is_ellipsoid = heights.name.find("llipsoid") != std::string::npos;
        heights.reference = is_egm96       ? HEIGHT_REFERENCE::EGM96
                            : is_ellipsoid ? HEIGHT_REFERENCE::ELLIPSOID
                                           : HEIGHT_REFERENCE::OTHER;
        heights.metres_per_unit = system.GetTargetLinearUnits("VERT_CS");
    } else if (system.GetAxesCount() == 3) {
        heights.reference = HEIGHT_REFERENCE::ELLIPSOID;
        heights.name = "ellipsoid";
    }
    return heights;
}
