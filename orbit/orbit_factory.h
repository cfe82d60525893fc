/// \file orbit_factory.h
/// From an orbit type and an interpolation to the concrete orbit: one table with a row for every pair.

#pragma once

#include <array>
#include <memory>

#include "orbit/orbit_base.h"

struct ORBIT_FACTORY_ROW {
    ORBIT_TYPE_ID type_id;
    const char* type_text;
    INTERPOLATION_ID interpolation_id;
    const char* interpolation_text;
    std::unique_ptr<ORBIT_BASE> (*create)();  ///< nothing for the pairs of record databases with "chebyshev",
                                              ///< "localchebyshev", "hermite" and "localhermite": returns null
};

using ORBIT_FACTORY_TABLE = std::array<ORBIT_FACTORY_ROW, size_t{kOrbitTypes} * size_t{kInterpolations}>;

/// In order of type and then interpolation.
[[nodiscard]] const ORBIT_FACTORY_TABLE& OrbitFactoryTable();

/// The orbit of a pair, ready for its configuration. @throws ERROR_ARGUMENT, after logging, for a pair that creates
/// none
[[nodiscard]] std::unique_ptr<ORBIT_BASE> CreateOrbit(ORBIT_TYPE_ID type_id, const INTERPOLATION_REQUEST& request);

/// The orbit that the pool describes: type, interpolation, reference time, state vectors.
/// @throws ERROR_EXCEPTION after lines that name file, key and value
[[nodiscard]] std::unique_ptr<ORBIT_BASE> ReadOrbit(PARAMETER_POOL& pool);
