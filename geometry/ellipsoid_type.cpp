#include "geometry/ellipsoid_type.h"

#include "lib/baselib/containers/string.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/parameter_pool.h"

namespace {

constexpr int kFirstId = 1;
constexpr int kNone = 5;

struct AXES {
    long double a_m;
    long double b_m;
};

constexpr BASIC::TYPES::ENUM_BASE::ROW kRows[] = {
    {kFirstId, "Airy"}, {2, "Bessel"}, {3, "GRS80"}, {4, "WGS84"}, {kNone, "-"}};
constexpr AXES kAxes[] = {{6377340.189L, 6356034.447L},
                          {6377397.155L, 6356078.965L},
                          {6378137.0L, 6356752.3141L},
                          {6378137.0L, 6356752.315L},
                          {0.0L, 0.0L}};

}  // namespace

template <class T>
EllipsoidType<T>::EllipsoidType() {
    AssignId(kNone, true);
}

template <class T>
EllipsoidType<T>::EllipsoidType(const std::string& text) {
    AssignText(text, false);
}

template <class T>
void EllipsoidType<T>::ReadFromParameterPool(PARAMETER_POOL& pool) {
    const std::string text = pool.Get<STRING>("ellipsoid_type").ToStd();
    try {
        AssignText(text, false);
    } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE&) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"ellipsoid_type\": \"%s\" is none of %s", pool.FileName().c_str(),
                      text.c_str(), ValidNames().c_str());
        throw;
    }
}

template <class T>
std::string EllipsoidType<T>::ValidNames() {
    std::string names;
    for (const ROW& row : kRows) names += std::string("'") + row.text + "' ";
    return names;
}

template <class T>
std::span<const BASIC::TYPES::ENUM_BASE::ROW> EllipsoidType<T>::Rows() const {
    return kRows;
}

template <class T>
void EllipsoidType<T>::RowAssigned() {
    const AXES& axes = kAxes[Id() - kFirstId];
    a_m_ = static_cast<T>(axes.a_m);
    b_m_ = static_cast<T>(axes.b_m);
}

template class EllipsoidType<float>;
template class EllipsoidType<double>;
template class EllipsoidType<long double>;
