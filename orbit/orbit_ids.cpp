#include "orbit/orbit_ids.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

namespace {

constexpr const char* kOrbitTypeTexts[kOrbitTypes] = {
    "orbit_pool_float_double",  "orbit_pool_float_utc",  "orbit_pool_float_met",
    "orbit_pool_double_double", "orbit_pool_double_utc", "orbit_pool_double_met",
    "orbit_mdb_double_double",  "orbit_mdb_double_utc",  "orbit_mdb_double_met"};

constexpr const char* kInterpolationTexts[kInterpolations] = {
    "polynom",   "polyfit",        "spline",  "localpolynom", "localpolyfit",
    "chebyshev", "localchebyshev", "hermite", "localhermite", "everett"};

}  // namespace

const char* TextOf(ORBIT_TYPE_ID id) {
    return kOrbitTypeTexts[static_cast<int>(id) - 1];
}

const char* TextOf(INTERPOLATION_ID id) {
    return kInterpolationTexts[static_cast<int>(id)];
}

ORBIT_TYPE_ID OrbitTypeIdFromText(const std::string& text) {
    for (int i = 0; i < kOrbitTypes; ++i) {
        if (text == kOrbitTypeTexts[i]) return static_cast<ORBIT_TYPE_ID>(i + 1);
    }
    LogAndThrow<ERROR_ARGUMENT>("GENERAL_ORBIT: can not convert %s to orbit_type_id", text.c_str());
}

INTERPOLATION_ID InterpolationIdFromText(const std::string& text) {
    for (int i = 0; i < kInterpolations; ++i) {
        if (text == kInterpolationTexts[i]) return static_cast<INTERPOLATION_ID>(i);
    }
    LogAndThrow<ERROR_ARGUMENT>("GENERAL_ORBIT: can not convert %s to interpolation_id", text.c_str());
}
