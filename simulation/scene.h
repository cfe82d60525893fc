/// \file scene.h
/// All that the phase kernel reads, and the grids that it writes. The program fills one SCENE before the threads start.
/// Threads: the scene is const while they run. The grids that its pointers reach are shared: a thread writes a pixel,
/// in every grid, by the rules of pixel_ownership.h.

#pragma once

#include <array>
#include <vector>

#include "geometry/calc_slave_time.h"
#include "lib/baselib/containers/records.h"
#include "lib/baselib/image/grid_view.h"
#include "simulation/dem_grid.h"

/// One acquisition, after oversampling and range-time correction. Range times are two-way.
struct ACQUISITION_SCENE {
    ORBIT_HANDLE orbit{};
    double first_azimuth_time_s = 0.0;  ///< on the handle's axis
    double last_azimuth_time_s = 0.0;
    double near_range_time_s = 0.0;
    double far_range_time_s = 0.0;
    double prf_hz = 0.0;                       ///< azimuth sampling rate, lines per second
    double azimuth_sampling_interval_s = 0.0;  ///< 1 / prf_hz
    double rsf_hz = 0.0;                       ///< range sampling rate
    double range_sampling_interval_s = 0.0;    ///< 1 / rsf_hz
    double carrier_frequency_hz = 0.0;
    double azimuth_bandwidth_hz = 0.0;
};

/// Rows and columns of the DEM to walk: cells (r, c) with first_row <= r < last_row, first_column <= c < last_column.
/// Both last values are indices of samples inside the DEM, reached only as far corners of the last cells.
struct DEM_RANGE {
    int first_row = 0;
    int last_row = 0;
    int first_column = 0;
    int last_column = 0;
};

/// Cells of one DEM row: columns first_column <= c < end_column.
struct CELL_RANGE {
    int first_column = 0;
    int end_column = 0;
};

/// Quadrilaterals in DEM coordinates (x: column, y: row); the four lists have equal length.
/// q1, q2: near range, earlier and later azimuth time; q3, q4: far range, earlier and later.
struct SIMULATION_AREA {
    std::vector<POINT<double>> q1{};
    std::vector<POINT<double>> q2{};
    std::vector<POINT<double>> q3{};
    std::vector<POINT<double>> q4{};
};

/// Single-pass pairs: correction p0 + p1 u + p2 u^2 + ... of the slave's time, u = minimum travel time - reference.
struct AZIMUTH_SHIFT_CORRECTION {
    std::vector<double> coefficients{};  ///< none: no correction
    double fast_time_reference_s = 0.0;
};

/// The grids over the master image (simulation size). The mask's rows are those to be simulated.
struct MASTER_GRIDS {
    GRID_VIEW<unsigned char> mask{};  ///< 0 before the run; 1 simulated
    GRID_VIEW<float> phase_rad{};     ///< if wanted
};

/// Slave position (pixels) of every master pixel whose indices are multiples of the factors; both or none present.
/// Whole grids have (master rows - 1) / azimuth_factor + 1 rows and (master columns - 1) / range_factor + 1 columns.
struct SHIFT_GRIDS {
    int azimuth_factor = 1;
    int range_factor = 1;
    GRID_VIEW<double> range{};
    GRID_VIEW<double> azimuth{};

    [[nodiscard]] bool Wanted() const { return range && azimuth; }
};

/// Earth-fixed coordinates (metres), DEM height (metres) and the normal of the terrain's triangle (Earth-fixed, not of
/// unit length), each on its own if wanted, all of one pair of factors.
struct EARTH_GRIDS {
    int azimuth_factor = 1;
    int range_factor = 1;
    GRID_VIEW<double> x{};
    GRID_VIEW<double> y{};
    GRID_VIEW<double> z{};
    GRID_VIEW<float> radar_dem{};
    std::array<GRID_VIEW<float>, 3> normal{};  ///< all or none; only together with the height

    [[nodiscard]] bool Wanted() const { return x || y || z || radar_dem; }
};

struct SCENE {
    DEM_GRID dem{};
    DEM_RANGE simulated{};
    std::vector<CELL_RANGE> cells{};  ///< for each simulated row those to look at; empty: all
    SIMULATION_AREA area{};
    ACQUISITION_SCENE master{};
    ACQUISITION_SCENE slave{};
    bool bistatic = false;  ///< single pass: the slave's echo left the master
    AZIMUTH_SHIFT_CORRECTION correction{};
    MASTER_GRIDS image{};
    SHIFT_GRIDS shifts{};
    EARTH_GRIDS earth{};
};
