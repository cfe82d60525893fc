/// \file orbit_entries.h
/// State vectors as entries of an acquisition's pool.

#pragma once

#include <string>
#include <vector>

#include "import/orbit_files/orbit_table.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

/// UTC times in ISO form, positions and velocities, type "orbit_pool_double_utc", and the interpolation that suits
/// them. The entries are collected; the caller updates the pool.
/// @param reference_time  value of orbit_reference_time, UTC
void ChangeOrbitEntries(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const std::vector<UTC_STATE_VECTOR>& vectors,
                        const UNIVERSAL_TIME& reference_time, const std::string& comment);

/// The vectors' own second at or before the first: all times of the pool are then positive.
[[nodiscard]] UNIVERSAL_TIME ReferenceTimeFor(const std::vector<UTC_STATE_VECTOR>& vectors);

/// The interpolation that the entries got, and why: "localpolynom_0_8 (16 vectors every 10 s: ...)".
[[nodiscard]] std::string InterpolationText(const std::vector<UTC_STATE_VECTOR>& vectors);
