/// \file neighbour_solver.h
/// Zero Doppler of places that lie close together, one after the other: each begins with the time of the one before.
/// Threads: belongs to one.

#pragma once

#include <algorithm>
#include <optional>

#include "geometry/zero_doppler.h"
#include "orbit/compiled_orbit.h"
#include "simulation/scene.h"

class NEIGHBOUR_SOLVER {
  public:
    /// Compiles the orbit over the image's time.
    explicit NEIGHBOUR_SOLVER(const ACQUISITION_SCENE& acquisition)
        : acquisition_(acquisition),
          orbit_(*acquisition.orbit.orbit, acquisition.first_azimuth_time_s + acquisition.orbit.offset_s - kMargin_s,
                 acquisition.last_azimuth_time_s + acquisition.orbit.offset_s + kMargin_s),
          data_(DataWindow(acquisition.orbit)),
          guess_s_(std::clamp(0.5 * (acquisition.first_azimuth_time_s + acquisition.last_azimuth_time_s), data_.first_s,
                              data_.last_s)) {}

    /// Nothing where the solution lies outside the orbit's data.
    [[nodiscard]] std::optional<ZERO_DOPPLER> Solve(const VECTOR_3D<double>& point_m) {
        const ZERO_DOPPLER solution = SolveZeroDoppler(orbit_, acquisition_.orbit.offset_s, point_m, guess_s_, data_);
        if (!solution.converged) return std::nullopt;
        guess_s_ = solution.time_s;
        return solution;
    }

    [[nodiscard]] ORBIT_STATE State(double time_s) const { return orbit_.State(time_s + acquisition_.orbit.offset_s); }
    [[nodiscard]] const ACQUISITION_SCENE& Acquisition() const { return acquisition_; }

  private:
    static constexpr double kMargin_s = 1.0;

    const ACQUISITION_SCENE& acquisition_;
    COMPILED_ORBIT orbit_;
    TIME_WINDOW data_;
    double guess_s_;
};

/// The place of a DEM sample at another height, in the frame of the orbits.
[[nodiscard]] inline VECTOR_3D<double> PlaceAtHeight(const DEM_GRID& dem, int column, int row, double height_m) {
    const GEOGRAPHIC place = GeographicOfDemSample(dem, column, row);
    return DatumForward(dem.geodetic.datum, GeographicToCartesian({place.longitude_rad, place.latitude_rad, height_m},
                                                                  dem.geodetic.a_m, dem.geodetic.e2));
}
