/// \file pool_state_vectors.h
/// Reading state vectors from a parameter pool, where they stand in three lists: times, positions, velocities.

#pragma once

#include "orbit/source/orbit_configuration.h"
#include "orbit/source/state_vector_lists.h"

/// Reads the three lists whose keys the configuration names. Their types: times FLT_15_V or STR_V (UTC, MET);
/// coordinates FLT_6_V for floats, else FLT_15_V.
/// @throws ERROR_PARAMETER_POOL from the pool, ERROR_DATA after a line that names file and key for lists that do not
/// fit together and for a text that is no time
[[nodiscard]] STATE_VECTOR_LISTS ReadStateVectors(PARAMETER_POOL& pool, const ORBIT_CONFIGURATION& configuration,
                                                  const ORBIT_NUMBERS& numbers);
