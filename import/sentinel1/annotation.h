/// \file annotation.h
/// The annotation file of a Sentinel-1 single-look complex image: what the processor needs of it.
/// Range times are two-way. Lines, samples and bursts count from 0.

#pragma once

#include <string>
#include <vector>

#include "import/orbit_files/orbit_table.h"

/// First and last, both included; last < first when there is none.
struct INDEX_RANGE {
    long long first = 0;
    long long last = -1;
};

struct S1_BURST {
    UNIVERSAL_TIME first_line;
    INDEX_RANGE valid_lines;    ///< within the burst
    INDEX_RANGE valid_samples;  ///< of all its valid lines
};

struct S1_ANNOTATION {
    std::string mission;       ///< "S1A"
    std::string swath;         ///< "IW2"
    std::string polarisation;  ///< "VV"
    std::string pass;          ///< "Descending"
    long long absolute_orbit = 0;
    UNIVERSAL_TIME first_line;
    UNIVERSAL_TIME last_line;
    double line_interval_s = 0.0;  ///< of the image, after focusing; not of the pulses
    double range_sampling_rate_hz = 0.0;
    double first_range_time_s = 0.0;
    double radar_frequency_hz = 0.0;
    double azimuth_bandwidth_hz = 0.0;
    double semi_major_axis_m = 0.0;
    double semi_minor_axis_m = 0.0;
    long long samples = 0;
    long long lines = 0;  ///< of the whole file: bursts one below the other
    long long lines_per_burst = 0;
    std::vector<S1_BURST> bursts;  ///< empty for a stripmap image
    ORBIT_TABLE orbit;
};

/// @param file  for messages. @throws COMPANION_ERROR for another product (detected, ground range) and whatever is
/// broken, missing or contradictory
[[nodiscard]] S1_ANNOTATION ParseAnnotation(const std::string& file, const std::string& content);
