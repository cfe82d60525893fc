/// \file orbit_ids.h
/// The numbers and texts of orbit types and interpolations, as they stand in parameter pools.

#pragma once

#include <optional>
#include <string>

enum class ORBIT_TYPE_ID : int {
    POOL_FLOAT_DOUBLE = 1,  ///< source, type of the coordinates, type of the times
    POOL_FLOAT_UTC = 2,
    POOL_FLOAT_MET = 3,
    POOL_DOUBLE_DOUBLE = 4,
    POOL_DOUBLE_UTC = 5,
    POOL_DOUBLE_MET = 6,
    MDB_DOUBLE_DOUBLE = 7,
    MDB_DOUBLE_UTC = 8,
    MDB_DOUBLE_MET = 9
};

enum class INTERPOLATION_ID : int {
    POLYNOM = 0,
    POLYFIT = 1,
    SPLINE = 2,
    LOCALPOLYNOM = 3,
    LOCALPOLYFIT = 4,
    CHEBYSHEV = 5,
    LOCALCHEBYSHEV = 6,
    HERMITE = 7,
    LOCALHERMITE = 8,
    EVERETT = 9
};

inline constexpr int kOrbitTypes = 9;
inline constexpr int kInterpolations = 10;

[[nodiscard]] const char* TextOf(ORBIT_TYPE_ID id);
[[nodiscard]] const char* TextOf(INTERPOLATION_ID id);

/// Exact, case-sensitive. @throws ERROR_ARGUMENT after logging
[[nodiscard]] ORBIT_TYPE_ID OrbitTypeIdFromText(const std::string& text);
[[nodiscard]] INTERPOLATION_ID InterpolationIdFromText(const std::string& text);

/// True for the types that are read from a record database.
[[nodiscard]] constexpr bool IsMdbType(ORBIT_TYPE_ID id) {
    return id >= ORBIT_TYPE_ID::MDB_DOUBLE_DOUBLE;
}

/// True for the types whose coordinates are of single precision.
[[nodiscard]] constexpr bool IsFloatType(ORBIT_TYPE_ID id) {
    return id <= ORBIT_TYPE_ID::POOL_FLOAT_MET;
}
