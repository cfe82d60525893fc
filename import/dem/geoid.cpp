#include "import/dem/geoid.h"

#include <proj.h>

#include <algorithm>
#include <cmath>

#include "companions/companion_error.h"

namespace {

constexpr const char* kGrid = "us_nga_egm96_15.tif";

/// From the map to radians, then the geoid's height on top of the given one.
std::string Pipeline(const MAP_REFERENCE& map) {
    const std::string to_radians =
        map.kind == MAP_KIND::UTM
            ? "+inv +proj=utm +ellps=WGS84 +zone=" + std::to_string(map.utm_zone) + (map.southern ? " +south" : "")
            : "+proj=unitconvert +xy_in=deg +xy_out=rad";
    return "+proj=pipeline +step " + to_radians + " +step +proj=vgridshift +multiplier=1 +grids=" + kGrid;
}

}  // namespace

void EGM96_GEOID::DESTROY::operator()(pj_ctx* context) const {
    proj_context_destroy(context);
}

void EGM96_GEOID::DESTROY::operator()(PJconsts* transformation) const {
    proj_destroy(transformation);
}

EGM96_GEOID::EGM96_GEOID(const MAP_REFERENCE& map) : context_(proj_context_create()) {
    proj_context_set_enable_network(context_.get(), 0);
    proj_log_level(context_.get(), PJ_LOG_NONE);
    transformation_.reset(proj_create(context_.get(), Pipeline(map).c_str()));
    if (transformation_ == nullptr)
        throw COMPANION_ERROR(std::string("PROJ has no EGM96 geoid (") + kGrid + "): install the package proj-data");
}

void EGM96_GEOID::AddTo(const std::vector<double>& x, double y, std::vector<double>& heights_m) {
    const std::size_t count = heights_m.size();
    x_ = x;
    y_.assign(count, y);
    geoid_m_.assign(count, 0.0);
    proj_errno_reset(transformation_.get());
    proj_trans_generic(transformation_.get(), PJ_FWD, x_.data(), sizeof(double), count, y_.data(), sizeof(double),
                       count, geoid_m_.data(), sizeof(double), count, nullptr, 0, 0);
    for (std::size_t i = 0; i < count; ++i) {
        if (std::isnan(heights_m[i])) continue;
        if (!(std::abs(geoid_m_[i]) < 1000.0))
            throw COMPANION_ERROR("PROJ has no EGM96 height at " + std::to_string(x[i]) + " " + std::to_string(y));
        heights_m[i] += geoid_m_[i];
        lowest_m_ = std::min(lowest_m_, geoid_m_[i]);
        highest_m_ = std::max(highest_m_, geoid_m_[i]);
    }
}
