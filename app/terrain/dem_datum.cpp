#include "app/terrain/dem_datum.h"

#include <optional>
#include <string>

#include "app/keys/pool_values.h"
#include "geometry/ellipsoid_type.h"
#include "lib/baselib/containers/array.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr double kRotationTolerance = 1e-6;

/// The elements of a list of known length, whatever its first index; none when the pool does not hold it.
std::optional<ARRAY<double>> ReadList(PARAMETER_POOL& pool, const POOL_KEY<ARRAY<double>>& key, int length) {
    std::optional<ARRAY<double>> list = ReadIfPresent<ARRAY<double>>(pool, key);
    if (list && list->Count() != length)
        RefuseValue(SourceOf(pool, key), "of " + std::to_string(list->Count()) + " elements",
                    "does not hold " + std::to_string(length));
    return list;
}

EllipsoidType<double> ReadEllipsoidType(PARAMETER_POOL& pool) {
    EllipsoidType<double> ellipsoid;
    constexpr POOL_KEY<STRING> kKey = "ellipsoid_type";
    if (pool.FindKey(kKey.row.name)) {
        ellipsoid.ReadFromParameterPool(pool);
    } else {
        ellipsoid.AssignText(kKey.row.fallback, true);
    }
    if (ellipsoid.SemiMajorAxis() == 0.0)
        RefuseValue(SourceOf(pool, kKey), "\"" + ellipsoid.Text() + "\"", "is no ellipsoid for a DEM");
    return ellipsoid;
}

DATUM ReadDatum(PARAMETER_POOL& pool) {
    constexpr POOL_KEY<ARRAY<double>> kRotation = "datum_rotation";
    constexpr POOL_KEY<double> kScale = "datum_scale";
    DATUM datum;
    if (const auto shift = ReadList(pool, "datum_shift", 3)) {
        const double* element = shift->Data();
        datum.shift_m = {element[0], element[1], element[2]};
    }
    const auto rotation = ReadList(pool, kRotation, 9);
    if (!rotation) {
        if (pool.FindKey(kScale.row.name))
            Log().Message(LOGGING_LEVEL::WARNING, "%s: key \"%s\" is not used without \"%s\"", pool.FileName().c_str(),
                          kScale.row.name, kRotation.row.name);
        return datum;
    }
    datum.shift_only = false;
    for (int i = 0; i < 9; ++i) datum.rotation[i / 3][i % 3] = rotation->Data()[i];
    if (!IsRotation(datum.rotation, kRotationTolerance))
        RefuseValue(SourceOf(pool, kRotation), "of 9 elements", "is no rotation (orthonormal to 1e-6)");
    datum.scale = ReadIfPresent<double>(pool, kScale).value_or(datum.scale);
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
