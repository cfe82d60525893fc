/// \file simulation_state.h
/// All that the stages of one run share: one object, filled stage by stage, passed by reference and never copied.

#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "orbit/general_orbit.h"
#include "simulation/scene.h"

/// Sub-sampling factors of one product family; 1 means every pixel.
struct SUBSAMPLING {
    int x = 1;  ///< range, samples
    int y = 1;  ///< azimuth, lines
};

/// The run's configuration: what to read, what to write. A text is empty when its key was not given.
struct RUN_CONFIGURATION {
    std::string configuration_file;  ///< the control file; it may be missing
    std::string master_pool;
    std::string slave_pool;
    std::string insar_pool;
    std::string log_pool;
    std::string dem_pool;
    std::string dem_file;
    std::string dem_valid;
    std::string range_time_shift;
    std::string phase_file;
    std::string invalid_phase;
    std::string observation_mode;
    std::string looks_range;
    std::string looks_azimuth;
    std::string range_shift_file;
    std::string azimuth_shift_file;
    std::string x_earth_file;
    std::string y_earth_file;
    std::string z_earth_file;
    std::string height_file;
    bool permanent_scatterer = false;
    bool relative_shifts = false;
    SUBSAMPLING shift;
    SUBSAMPLING earth;
    SUBSAMPLING geocoding;
    bool area_extended = false;
    int extension_x = 0;  ///< samples added at the far side
    int extension_y = 0;  ///< lines added at the late side

    bool WantsPhase() const { return !phase_file.empty(); }
    bool WantsShifts() const { return !range_shift_file.empty(); }
    bool WantsEarth() const { return !x_earth_file.empty(); }
    bool WantsHeight() const { return !height_file.empty(); }
};

/// Single pass: one transmitter, two receivers. Dual pass: the repeat case.
struct OBSERVATION_MODE {
    int identifier = 0;
    std::string text;
    double factor = 0.0;  ///< kept for the record; the kernel always works with the two-way factor 2

    bool IsSinglePass() const { return identifier == 1; }
};

/// One acquisition. Azimuth times: seconds since the reference time of its orbit; range times: two-way seconds.
struct ACQUISITION {
    ORBIT_OF_POOL orbit;
    double oversampling = 1.0;
    double prf_hz = 0.0;
    double range_sampling_frequency_hz = 0.0;
    double azimuth_bandwidth_hz = 0.0;
    double radar_frequency_hz = 0.0;
    double first_azimuth_time_s = 0.0;
    double first_range_time_s = 0.0;
    double azimuth_stop_time_s = 0.0;
    double range_stop_time_s = 0.0;
};

/// Azimuth-shift correction of a single-pass slave: p0 + p1 u + p2 u^2 + ..., u = travel time - fast-time reference.
struct CORRECTION_POLYNOMIAL {
    ARRAY<double> coefficients;
    double fast_time_reference_s = 0.0;
    double relative_time_reference_s = 0.0;
};

/// Samples and lines of an image.
struct IMAGE_SIZE {
    int samples = 0;
    int lines = 0;
};

struct SIMULATION_STATE {
    RUN_CONFIGURATION configuration;

    OBSERVATION_MODE mode;
    ACQUISITION master;
    ACQUISITION slave;
    IMAGE_SIZE image;       ///< the master image
    IMAGE_SIZE simulation;  ///< the master image plus the extension
    double equatorial_radius_m = 0.0;
    double polar_radius_m = 0.0;
    double look_direction = 0.0;  ///< +1 right, -1 left
    CORRECTION_POLYNOMIAL correction;

    MEM_MGR dem;
    std::optional<float> invalid_phase;  ///< initial value of the phase grid
    float valid_dem_minimum_m = 0.0F;
    float valid_dem_maximum_m = 0.0F;

    IMAGE_SIZE shift_output;
    IMAGE_SIZE earth_output;
    MEM_MGR mask;
    MEM_MGR phase;
    MEM_MGR range_shift;
    MEM_MGR azimuth_shift;
    MEM_MGR x_earth;
    MEM_MGR y_earth;
    MEM_MGR z_earth;
    MEM_MGR height;

    SCENE scene;  ///< what the kernel reads and where it writes

    PARAMETER_POOL_READ_WRITE_CHANGE* insar_pool = nullptr;  ///< receives entries of stage C
};
