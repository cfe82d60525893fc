/// \file look_direction.h
/// The side on which the antenna looks.

#pragma once

#include "lib/baselib/pool/parameter_pool.h"

/// Of the words of SAR::AntennaLookDirection the acquisitions' pools hold those of its first list, and only "right" and
/// "left" can be simulated; capitals and the enumeration's other texts are refused.
/// A master pool that names another direction than the slave's, which counts, gives a WARNING: over a DEM that covers
/// both sides nothing else would tell.
/// @return +1 right, -1 left
/// @throws the pool errors; std::out_of_range for an empty text; ERROR_PARAMETER for any other
[[nodiscard]] double ReadLookSign(PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool);
