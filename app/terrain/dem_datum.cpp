#include "app/terrain/dem_datum.h"

#include <cmath>
#include <string>

#include "app/keys/refusal.h"
#include "geometry/ellipsoid_type.h"
#include "lib/baselib/containers/array.h"

namespace {

constexpr double kRotationTolerance = 1e-6;
constexpr double kLargestScaleDifference = 0.01;  ///< datums differ by some parts per million

/// The elements of a list of known length, whatever its first index.
ARRAY<double> ReadList(PARAMETER_POOL& pool, const std::string& key, int length) {
    auto list = pool.Get<ARRAY<double>>(key);
    const VALUE_SOURCE source{pool.FileName(), key};
    if (list.Count() != length)
        RefuseValue(source, "of " + std::to_string(list.Count()) + " elements",
                    "does not hold " + std::to_string(length));
    for (const double element : list) RequireFinite(source, element);
    return list;
}

EllipsoidType<double> ReadEllipsoidType(PARAMETER_POOL& pool) {
    EllipsoidType<double> ellipsoid;
    if (pool.FindKey("ellipsoid_type")) {
        ellipsoid.ReadFromParameterPool(pool);
    } else {
        ellipsoid.AssignText("WGS84", true);
    }
    if (ellipsoid.SemiMajorAxis() == 0.0)
        RefuseValue({pool.FileName(), "ellipsoid_type"}, "\"" + ellipsoid.Text() + "\"", "is no ellipsoid for a DEM");
    return ellipsoid;
}

DATUM ReadDatum(PARAMETER_POOL& pool) {
    DATUM datum;
    if (pool.FindKey("datum_shift")) {
        const ARRAY<double> shift = ReadList(pool, "datum_shift", 3);
        const double* element = shift.Data();
        datum.shift_m = {element[0], element[1], element[2]};
    }
    if (!pool.FindKey("datum_rotation")) return datum;
    datum.shift_only = false;
    const ARRAY<double> rotation = ReadList(pool, "datum_rotation", 9);
    for (int i = 0; i < 9; ++i) datum.rotation[i / 3][i % 3] = rotation.Data()[i];
    if (!IsRotation(datum.rotation, kRotationTolerance))
        RefuseValue({pool.FileName(), "datum_rotation"}, "of 9 elements", "is no rotation (orthonormal to 1e-6)");
    if (pool.FindKey("datum_scale")) datum.scale = pool.Get<double>("datum_scale");
    RequireFinite({pool.FileName(), "datum_scale"}, datum.scale);
    if (std::abs(datum.scale - 1.0) > kLargestScaleDifference)
        RefuseValue({pool.FileName(), "datum_scale"}, datum.scale,
                    "is outside 0.99..1.01 (a factor, not parts per million)");
    return datum;
}

}  // namespace

GEODETIC_PARAMETERS ReadGeodeticParameters(PARAMETER_POOL& dem_pool) {
    const EllipsoidType<double> ellipsoid = ReadEllipsoidType(dem_pool);
    GEODETIC_PARAMETERS parameters;
    parameters.a_m = ellipsoid.SemiMajorAxis();
    parameters.e2 = SquaredEccentricity(ellipsoid.SemiMajorAxis(), ellipsoid.SemiMinorAxis());
    parameters.datum = ReadDatum(dem_pool);
    return parameters;
}
