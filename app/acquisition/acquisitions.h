/// \file acquisitions.h
/// The two acquisitions as their pools describe them: orbits, rates, start times, size, ellipsoid, look direction.

#pragma once

#include <string>

#include "app/acquisition/observation_mode.h"
#include "app/request/request.h"
#include "app/run_pools.h"
#include "orbit/general_orbit.h"
#include "simulation/scene.h"

/// Samples and lines of an image.
struct IMAGE_SIZE {
    int samples = 0;
    int lines = 0;

    bool operator==(const IMAGE_SIZE&) const = default;
};

/// When the first pixel of an image was taken.
struct IMAGE_START {
    double azimuth_time_s = 0.0;  ///< on the axis of the acquisition's orbit
    double range_time_s = 0.0;    ///< two-way
};

/// Rates are those of the pool. The image is finer by the oversampling: its own rates are the adapted ones, which every
/// later stage calls prf_hz and rsf_hz.
struct ACQUISITION {
    std::string pool;
    ORBIT_OF_POOL orbit{};
    double oversampling = 1.0;
    double pool_prf_hz = 0.0;
    double azimuth_bandwidth_hz = 0.0;
    double pool_rsf_hz = 0.0;  ///< range sampling frequency
    double carrier_frequency_hz = 0.0;
    IMAGE_START start{};  ///< before the range time correction

    [[nodiscard]] double AdaptedPrf_hz() const { return pool_prf_hz * oversampling; }
    [[nodiscard]] double AdaptedRsf_hz() const { return pool_rsf_hz * oversampling; }
};

/// Radii of the ellipsoid on which the image's corners are located.
struct ELLIPSOID_RADII {
    double equatorial_m = 0.0;
    double polar_m = 0.0;
};

struct ACQUISITIONS {
    OBSERVATION_MODE mode;
    ACQUISITION master;
    ACQUISITION slave;
    IMAGE_SIZE image;  ///< the master image
    ELLIPSOID_RADII ellipsoid;
    AZIMUTH_SHIFT_CORRECTION correction;  ///< of a single-pass slave
    double look_sign = 0.0;               ///< +1 right, -1 left
    IMAGE_SIZE slave_image;               ///< as the slave pool tells it, else the master image's
};

/// Builds both orbits and reads the parameters. Standard mode reads size and start times of both images from the InSAR
/// pool, permanent-scatterer mode from the acquisitions' own pools.
/// @throws the pool errors; ERROR_ARGUMENT for an unknown observation mode; ERROR_PARAMETER for different oversampling,
///         an unknown look direction, or a value that no computation could use; std::out_of_range for an empty look
///         direction
[[nodiscard]] ACQUISITIONS ReadAcquisitions(const REQUEST& request, RUN_POOLS& pools);
