/// \file plain_bistatic.h
/// The single-pass solution written down plainly: point by point, on the orbits themselves, with a least-squares fit of
/// its own for every point. Threads: one object per thread; the travel times start from those of the point before.

#pragma once

#include <array>

#include "lib/baselib/containers/records.h"
#include "simulation/scene.h"

class PLAIN_BISTATIC {
  public:
    /// What a monostatic slave would have measured.
    struct EQUIVALENT {
        double range_m;  ///< half the minimum travel path
        double time_s;   ///< on the slave handle's axis
    };

    /// @param scene  must outlive the object
    PLAIN_BISTATIC(const SCENE& scene, double aperture_s) : scene_(scene), aperture_s_(aperture_s) {}

    [[nodiscard]] EQUIVALENT Solve(const VECTOR_3D<double>& point_m, double master_time_s, double master_range_m,
                                   double slave_time_s);

  private:
    static constexpr int kSamples = 3;

    [[nodiscard]] double TravelTime(int sample, const VECTOR_3D<double>& point_m, double receive_time_s);

    const SCENE& scene_;
    double aperture_s_;
    std::array<double, kSamples> excess_s_{};  ///< travel time minus twice the receive path, of the last point
};
