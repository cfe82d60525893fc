/// \file bistatic_solution.h
/// Single-pass pairs: one satellite (the master) transmits, both receive. The slave's echo of a ground point P left the
/// master and travelled master - P - slave; its travel time as a function of the receive time has a minimum, and the
/// slave image focuses P there. The minimum is found from a parabola through the squared travel times of a few receive
/// times across the aperture, and expressed as the range and time that a monostatic slave would have. Points are solved
/// in step, many at a time, on the compiled orbits; a place outside these is asked of the orbit itself.
/// A point's solution depends on nothing but the point: its travel times start from its own ranges.
/// Times: seconds on the master handle's axis; the slave's handle has been carried onto it (CarrySlaveOntoMasterAxis).
/// Accuracy: range to 1e-6 m, time to 5e-7 s of the true minimum for apertures of up to 0.9 s. The parabola's own error
/// grows with the square of the aperture time: 4.4e-6 m and 2.5e-5 s at 6.8 s. Threads: one object per thread.

#pragma once

#include <array>
#include <vector>

#include "simulation/prepared_scene.h"
#include "simulation/travel_time_block.h"

class BISTATIC_SOLUTION {
  public:
    struct SETTINGS {
        int sample_count = 3;      ///< at least 2
        int order = 2;             ///< of the polynomial through the squared travel times
        double tolerance = 1e-15;  ///< relative change that ends the travel-time iteration
    };

    /// Points solved towards both orbits. The slave's range and time are replaced by what a monostatic slave would have
    /// measured: half the minimum travel path, and the time on the slave handle's axis.
    struct POINTS {
        ROW_POINTS places;
        const double* master_time_s;
        const double* master_range_m;
        double* slave_time_s;
        double* slave_range_m;
        int dem_row;  ///< names the points in messages
        int first_dem_column;
    };

    /// @param prepared  must outlive the object
    explicit BISTATIC_SOLUTION(const PREPARED_SCENE& prepared) : BISTATIC_SOLUTION(prepared, SETTINGS()) {}
    BISTATIC_SOLUTION(const PREPARED_SCENE& prepared, const SETTINGS& settings);

    /// The fit's constant part, once before the first SolveRow.
    /// Errors: as CheckAperture
    void Prepare(double aperture_s);

    /// Solves elements first .. first + count - 1.
    /// @return how many of the points needed places that the compiled orbits do not have
    /// Errors: travel times without a minimum are logged at ALARM, then ERROR_ALGORITHM.
    [[nodiscard]] int SolveRow(const POINTS& points, int first, int count);

    /// How many further iterations the travel times took, at TRACE; the heading alone when nothing was solved.
    void LogStatistics() const;

  private:
    static constexpr int kMaxFurtherIterations = 100;
    using BLOCK = TRAVEL_TIME_BLOCK;

    [[nodiscard]] double SampleTime(int sample) const;
    void Load(const POINTS& points, int first, int size);
    void PlaceSatellite(const ROW_ORBIT& orbit);
    void IterateTravelTimes(const POINTS& points, int first, int size, int sample);
    void Finish(const POINTS& points, int first, int size) const;
    [[noreturn]] void RefuseMaximum(const POINTS& points, int element, int i) const;

    const SCENE& scene_;
    const PREPARED_SCENE& prepared_;
    SETTINGS settings_;
    double aperture_s_ = 0.0;
    std::vector<SAMPLE_WEIGHTS> weights_;  ///< one per sample
    std::array<long long, kMaxFurtherIterations + 1> histogram_{};
    BLOCK block_{};
    std::array<bool, BLOCK::kSize> one_by_one_{};  ///< points of the block that needed another place
};
