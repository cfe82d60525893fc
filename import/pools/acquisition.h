/// \file acquisition.h
/// An acquisition's pool read back: what its image is and where its orbit runs.

#pragma once

#include <optional>
#include <string>

#include "orbit/general_orbit.h"

struct ACQUISITION_OF_POOL {
    std::string pool;
    long long lines = 0;
    long long samples = 0;
    double first_azimuth_time_s = 0.0;  ///< seconds since the orbit's reference time
    double first_range_time_s = 0.0;    ///< two-way
    double line_rate_hz = 0.0;          ///< oversampling included, as for the range sampling rate
    double range_sampling_rate_hz = 0.0;
    double radar_frequency_hz = 0.0;
    double equatorial_radius_m = 0.0;
    double polar_radius_m = 0.0;
    std::optional<double> look_direction{};  ///< +1 right, -1 left
    ORBIT_OF_POOL orbit{};

    [[nodiscard]] double TimeOfLine(double line) const { return first_azimuth_time_s + line / line_rate_hz; }
    [[nodiscard]] double RangeTimeOfSample(double sample) const {
        return first_range_time_s + sample / range_sampling_rate_hz;
    }
};

/// @throws COMPANION_ERROR for a missing file, key or a value out of range; the pool and orbit errors
[[nodiscard]] ACQUISITION_OF_POOL ReadAcquisition(const std::string& path);

/// Of the acquisition, else of the other pool (if one is named). @throws COMPANION_ERROR when neither tells
[[nodiscard]] double LookDirection(const ACQUISITION_OF_POOL& acquisition, const std::string& other_pool);

/// @throws COMPANION_ERROR unless the state vectors reach over all lines of the image
void RequireOrbitCovers(const ACQUISITION_OF_POOL& acquisition);
