#include "import/stack/pair_figures.h"

#include <cmath>
#include <limits>

#include "companions/companion_error.h"
#include "geometry/calc_slave_time.h"
#include "geometry/geolocation_fast.h"
#include "geometry/vector_arithmetic.h"

namespace {

constexpr double kSpeedOfLight_m_s = 299792458.0;

double Middle(const HALF_OPEN_RANGE& range) {
    return 0.5 * static_cast<double>(range.first + range.end - 1);
}

/// The middle of the master's part, and the slave as it sees that.
class CENTRE_OF_PAIR {
  public:
    CENTRE_OF_PAIR(const STACK_IMAGE& master, const STACK_IMAGE& slave, const IMAGE_PART& part)
        : master_(master),
          slave_(slave),
          time_s_(master.acquisition.TimeOfLine(Middle(part.lines))),
          range_time_s_(master.acquisition.RangeTimeOfSample(Middle(part.samples))),
          state_(master.acquisition.orbit.State(time_s_)) {}

    [[nodiscard]] double Time_s() const { return time_s_; }
    [[nodiscard]] const ORBIT_STATE& Master() const { return state_; }

    [[nodiscard]] VECTOR_3D<double> Ground(double height_m) const {
        const ACQUISITION_OF_POOL& acquisition = master_.acquisition;
        return geolocation_fast(state_.position_m, state_.velocity_m_s, master_.side, height_m,
                                acquisition.polar_radius_m, acquisition.equatorial_radius_m, range_time_s_, 0.0)
            .point_m;
    }

    [[nodiscard]] ZERO_DOPPLER Slave(const VECTOR_3D<double>& point_m) const {
        const ORBIT_OF_POOL& orbit = slave_.acquisition.orbit;
        const double guess_s = 0.5 * (orbit.FirstTime() + orbit.LastTime());
        const auto solution = ZeroDopplerInsideData({&orbit, 0.0}, point_m, guess_s);
        if (!solution)
            throw COMPANION_ERROR(slave_.acquisition.pool +
                                  ": its state vectors do not cover the time at which it passes "
                                  "the centre of the image of " +
                                  master_.acquisition.pool);
        return *solution;
    }

  private:
    const STACK_IMAGE& master_;
    const STACK_IMAGE& slave_;
    double time_s_;
    double range_time_s_;
    ORBIT_STATE state_;
};

/// Across track and line of sight; turned so that it points up.
double PerpendicularBaseline_m(const ORBIT_STATE& master, const VECTOR_3D<double>& slave_m,
                               const VECTOR_3D<double>& point_m) {
    const VECTOR_3D<double> across = CrossProduct(master.velocity_m_s, point_m - master.position_m);
    const double length = DotProduct(slave_m - master.position_m, across) / Length(across);
    return DotProduct(across, master.position_m) < 0.0 ? -length : length;
}

/// The phase is 4 pi / wavelength times the slave's range: the height over which that changes by one turn, from places
/// 100 m apart in height with one range to the master.
double HeightOfAmbiguity_m(const CENTRE_OF_PAIR& centre, const STACK_IMAGE& slave, double height_m) {
    constexpr double kHalfStep_m = 50.0;
    constexpr double kSmallestSlope = 1e-12;
    const double change = centre.Slave(centre.Ground(height_m + kHalfStep_m)).range_m -
                          centre.Slave(centre.Ground(height_m - kHalfStep_m)).range_m;
    const double slope = std::fabs(change) / (2.0 * kHalfStep_m);
    if (slope < kSmallestSlope) return std::numeric_limits<double>::infinity();
    return kSpeedOfLight_m_s / slave.acquisition.radar_frequency_hz / (2.0 * slope);
}

}  // namespace

PAIR_FIGURES FiguresOfPair(const STACK_IMAGE& master, const STACK_IMAGE& slave, const IMAGE_PART& part,
                           double height_m) {
    const CENTRE_OF_PAIR centre(master, slave, part);
    const VECTOR_3D<double> point_m = centre.Ground(height_m);
    const double slave_time_s = centre.Slave(point_m).time_s;
    const double slave_axis_s = master.acquisition.orbit.SecondsFromReferenceOf(slave.acquisition.orbit);
    return {PerpendicularBaseline_m(centre.Master(), slave.acquisition.orbit.Position(slave_time_s), point_m),
            slave_axis_s + slave_time_s - centre.Time_s(), HeightOfAmbiguity_m(centre, slave, height_m)};
}
