/// \file state_vectors.h
/// Lists of state vectors: reading them from a parameter pool, and the checks that every list passes before an orbit
/// uses it. Nothing here depends on the interpolation's type.

#pragma once

#include <string>
#include <vector>

#include "orbit/interpolation_request.h"
#include "orbit/orbit_configuration.h"
#include "orbit/state_vector.h"

template <class T, class S>
using STATE_VECTORS = std::vector<STATE_VECTOR<T, S>>;

/// Names of the source for messages: a file and the key or item of each list.
struct STATE_VECTOR_SOURCE {
    std::string file;
    std::string time_key;
    std::string position_key;
    std::string velocity_key;
};

[[nodiscard]] STATE_VECTOR_SOURCE PoolSource(const ORBIT_CONFIGURATION& configuration);

/// Reads the three lists whose keys the configuration names. Their types: times FLT_15_V or STR_V (UTC, MET);
/// coordinates FLT_6_V for T = float, FLT_15_V for double.
/// @throws ERROR_PARAMETER_POOL from the pool, ERROR_DATA after a line that names file and key for lists that do not
/// fit together and for a text that is no time
template <class T, class S>
STATE_VECTORS<T, S> ReadStateVectorsFromPool(PARAMETER_POOL& pool, const ORBIT_CONFIGURATION& configuration);

/// The state vectors on the axis of the interpolation: seconds since the reference time, rounded to T.
/// @throws ERROR_DATA, after a line that names file, key and entry: too few vectors for the interpolation, times that
/// do not increase from vector to vector (after the rounding to T), times more than 1e10 s from the reference,
/// coordinates that are not finite or beyond 1e9 m or 1e6 m/s
template <class T, class S>
std::vector<ORBIT_SAMPLE<T>> CheckedSamples(const STATE_VECTORS<T, S>& vectors, const S& reference,
                                            const INTERPOLATION_REQUEST& request, const STATE_VECTOR_SOURCE& source);

/// Scans a list of texts of one time type. A text that is no MET is logged, its fields not reached stay 0 and the next
/// one is read; after the list the failure is thrown. A text that is no UTC ends the list.
/// @param name  file and key, for messages
/// @throws ERROR_DATA
template <class S>
std::vector<S> TimesFromTexts(const std::vector<std::string>& texts, const std::string& name);
