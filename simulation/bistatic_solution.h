/// \file bistatic_solution.h
/// Single-pass pairs: one satellite (the master) transmits, both receive. The slave's echo of a ground point P left the
/// master and travelled master - P - slave; its travel time as a function of the receive time has a minimum, and the
/// slave image focuses P there. The minimum is found from a parabola through the squared travel times of a few receive
/// times across the aperture, and expressed as the range and time that a monostatic slave would have.
/// Times: seconds on the master handle's axis; the slave's handle has been carried onto it (CarrySlaveOntoMasterAxis).
/// Accuracy: range to 1e-6 m, time to 5e-7 s of the true minimum (the parabola's own error, which falls with the square
/// of the aperture time).
/// Threads: one object per thread.

#pragma once

#include <array>
#include <vector>

#include "lib/baselib/containers/records.h"
#include "simulation/scene.h"

class BISTATIC_SOLUTION {
  public:
    struct SETTINGS {
        int sample_count = 3;      ///< at least 2
        int order = 2;             ///< of the polynomial through the squared travel times
        double tolerance = 1e-15;  ///< relative change that ends the travel-time iteration
    };

    /// What a monostatic slave would have measured.
    struct EQUIVALENT {
        double range_m;  ///< half the minimum travel path
        double time_s;   ///< on the slave handle's axis
    };

    /// @param scene  must outlive the object
    explicit BISTATIC_SOLUTION(const SCENE& scene) : BISTATIC_SOLUTION(scene, SETTINGS()) {}
    BISTATIC_SOLUTION(const SCENE& scene, const SETTINGS& settings);

    /// Aperture time and the fit's constant part, once before the first Solve. The aperture is that of the DEM's
    /// centre, or of the centre of the simulated rows and columns where the former lies outside the orbits' data.
    /// Errors: an aperture time of 0, or longer than the slave orbit's data, is logged at ALARM, then ERROR_PARAMETER.
    void Prepare() { PrepareForAperture(ReferenceAperture()); }
    /// The same for a given aperture time in seconds.
    void PrepareForAperture(double aperture_s);

    /// @param point_m         ground point
    /// @param master_time_s   its zero-Doppler time and range towards the master
    /// @param slave_time_s    its zero-Doppler time towards the slave
    /// @param dem_index       names the point in messages
    /// Errors: travel times without a minimum are logged at ALARM, then ERROR_ALGORITHM.
    [[nodiscard]] EQUIVALENT Solve(const VECTOR_3D<double>& point_m, double master_time_s, double master_range_m,
                                   double slave_time_s, const POINT<int>& dem_index);

    /// How many further iterations the travel times took, at TRACE; the heading alone when nothing was solved.
    void LogStatistics() const;

    [[nodiscard]] double ApertureTime() const { return aperture_s_; }

  private:
    static constexpr int kMaxFurtherIterations = 100;

    /// Squared travel time as a polynomial of the time from the sampling centre, in seconds.
    struct PARABOLA {
        long double c0;
        long double c1;
        long double c2;
    };

    [[nodiscard]] double ApertureAt(const VECTOR_3D<double>& point_m, double slave_time_s, double slave_range_m) const;
    [[nodiscard]] double ReferenceAperture() const;
    void PrepareFit();
    [[nodiscard]] double SampleTime(int sample) const;
    [[nodiscard]] double TravelTime(int sample, const VECTOR_3D<double>& point_m, double receive_time_s);
    [[nodiscard]] PARABOLA Fit() const;

    const SCENE& scene_;
    SETTINGS settings_;
    double aperture_s_ = 0.0;
    std::vector<double> excess_s_;                  ///< of the last point: travel time minus twice the receive path
    std::vector<long double> squared_travel_time_;  ///< per sample
    std::vector<long double> fit_operator_;         ///< (order + 1) x samples: ordinates to coefficients
    std::array<long long, kMaxFurtherIterations + 1> histogram_{};
};
