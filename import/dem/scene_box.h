/// \file scene_box.h
/// The box of longitudes and latitudes that the DEM of an acquisition has to cover.

#pragma once

#include <string>

#include "import/dem/sample_grid.h"

/// Where terrain between -1000 and 9000 m is seen by the image that the pool describes (keys n_samples, n_lines,
/// first_az_time, first_rg_time, prf, range_sampling_frequency, ellipsoid_parameters and the orbit's), and 0.02 degrees
/// around it for the borders that subsampled products add.
/// @param slave_pool  has the look direction when the master's pool lacks it; may be empty
/// @throws COMPANION_ERROR when the orbit does not cover the image; the pool and geometry errors
[[nodiscard]] DEGREE_BOX SceneBox(const std::string& master_pool, const std::string& slave_pool);
