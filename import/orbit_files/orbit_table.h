/// \file orbit_table.h
/// State vectors as an orbit file gives them. Frame: Earth-fixed, metres, metres per second; times UTC.

#pragma once

#include <string>
#include <vector>

#include "lib/baselib/containers/records.h"
#include "time/universal_time.h"

struct UTC_STATE_VECTOR {
    UNIVERSAL_TIME time{};
    VECTOR_3D<double> position_m{};
    VECTOR_3D<double> velocity_m_s{};
};

struct ORBIT_TABLE {
    std::string file;
    std::string kind;     ///< "Sentinel-1 orbit file", "CCSDS OEM", "CSV"; for messages
    std::string mission;  ///< as the file names it; empty when it does not
    std::vector<UTC_STATE_VECTOR> vectors;
};

/// At least two vectors, strictly increasing in time, 6000 to 100 000 km from the Earth's centre, with velocities that
/// are the positions' derivatives: kilometres taken for metres and inertial velocities are found so.
/// @throws COMPANION_ERROR naming the file and the first vector that is wrong
void CheckOrbitTable(const ORBIT_TABLE& table);

/// "2023-01-08T13:51:46.562402 to 2023-01-08T13:54:16.562402"
[[nodiscard]] std::string IntervalText(const UNIVERSAL_TIME& from, const UNIVERSAL_TIME& to);

/// Median distance of neighbouring vectors in seconds. There must be two.
[[nodiscard]] double VectorSpacing(const std::vector<UTC_STATE_VECTOR>& vectors);
