#include "import/stack/pair_figures.h"

#include "companions/companion_error.h"
#include "geometry/calc_slave_time.h"
#include "geometry/constants.h"
#include "geometry/geolocation_fast.h"
#include "geometry/pair_geometry.h"

namespace {

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

    [[nodiscard]] VECTOR_3D<double> Ground(double height_m) const {
        const ACQUISITION_OF_POOL& acquisition = master_.acquisition;
        return geolocation_fast(state_.position_m, state_.velocity_m_s, master_.side, height_m,
                                acquisition.polar_radius_m, acquisition.equatorial_radius_m, range_time_s_, 0.0)
            .point_m;
    }

    [[nodiscard]] double SlaveTime_s(const VECTOR_3D<double>& point_m) const {
        const ORBIT_OF_POOL& orbit = slave_.acquisition.orbit;
        const double guess_s = 0.5 * (orbit.FirstTime() + orbit.LastTime());
        const auto solution = ZeroDopplerInsideData({&orbit, 0.0}, point_m, guess_s);
        if (!solution)
            throw COMPANION_ERROR(slave_.acquisition.pool +
                                  ": its state vectors do not cover the time at which it passes "
                                  "the centre of the image of " +
                                  master_.acquisition.pool);
        return solution->time_s;
    }

    [[nodiscard]] PAIR_GEOMETRY Pair(const VECTOR_3D<double>& point_m, double height_m, double slave_time_s) const {
        const ACQUISITION_OF_POOL& master = master_.acquisition;
        const ACQUISITION_OF_POOL& slave = slave_.acquisition;
        const VECTOR_3D<double> up =
            UpAt(point_m, master.equatorial_radius_m + height_m, master.polar_radius_m + height_m);
        return PairGeometryAt(point_m, up, state_, slave.orbit.Position(slave_time_s),
                              0.5 * kSpeedOfLight / slave.radar_frequency_hz);
    }

  private:
    const STACK_IMAGE& master_;
    const STACK_IMAGE& slave_;
    double time_s_;
    double range_time_s_;
    ORBIT_STATE state_;
};

}  // namespace

PAIR_FIGURES FiguresOfPair(const STACK_IMAGE& master, const STACK_IMAGE& slave, const IMAGE_PART& part,
                           double height_m) {
    const CENTRE_OF_PAIR centre(master, slave, part);
    const VECTOR_3D<double> point_m = centre.Ground(height_m);
    const double slave_time_s = centre.SlaveTime_s(point_m);
    const double slave_axis_s = master.acquisition.orbit.SecondsFromReferenceOf(slave.acquisition.orbit);
    const PAIR_GEOMETRY pair = centre.Pair(point_m, height_m, slave_time_s);
    return {pair.perpendicular_baseline_m, slave_axis_s + slave_time_s - centre.Time_s(), pair.height_of_ambiguity_m};
}
