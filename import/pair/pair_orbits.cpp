#include "import/pair/pair_orbits.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "companions/companion_error.h"
#include "geometry/calc_slave_time.h"
#include "geometry/geolocation_fast.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "time/time_axis.h"

namespace {

template <class S>
std::vector<double> SecondsOf(const ARRAY<STRING>& texts) {
    std::vector<double> times_s;
    std::optional<S> first;
    for (const STRING& text : texts) {
        const S time = TIME_AXIS<S>::FromText(text.ToStd());
        if (!first) first = time;
        times_s.push_back(TIME_AXIS<S>::SecondsSince(*first, time));
    }
    return times_s;
}

std::vector<double> VectorTimes(PARAMETER_POOL& pool, const std::string& representation) {
    const std::string key = pool.Get<STRING>("orbit_param_key").ToStd();
    if (representation.ends_with("_utc")) return SecondsOf<UNIVERSAL_TIME>(pool.Get<ARRAY<STRING>>(key));
    if (representation.ends_with("_met")) return SecondsOf<MISSION_ELAPSED_TIME>(pool.Get<ARRAY<STRING>>(key));
    const auto times = pool.Get<ARRAY<double>>(key);
    return {times.begin(), times.end()};
}

std::string SecondsText(double from_s, double to_s) {
    char text[80];
    std::snprintf(text, sizeof text, "%.6f to %.6f s", from_s, to_s);
    return text;
}

[[noreturn]] void RefuseCoverage(const ACQUISITION_OF_POOL& acquisition, const std::string& wanted) {
    throw COMPANION_ERROR(acquisition.pool + ": offers state vectors of " +
                          SecondsText(acquisition.orbit.FirstTime(), acquisition.orbit.LastTime()) +
                          " (since its reference time); wanted: " + wanted +
                          ". Take an orbit file that reaches farther (velmora-import orbit)");
}

}  // namespace

std::optional<INTERPOLATION_CHOICE> InterpolationForPool(const std::string& pool_path) {
    PARAMETER_POOL pool(pool_path);
    const std::string representation = pool.Get<STRING>("orbit_representation").ToStd();
    if (representation.find("_pool_") == std::string::npos) return std::nullopt;
    const std::vector<double> times_s = VectorTimes(pool, representation);
    if (times_s.size() < 2) throw COMPANION_ERROR(pool_path + ": has less than two state vectors");
    return ChooseInterpolation(times_s);
}

SLAVE_LINES LinesSeenBySlave(const ACQUISITION_OF_POOL& master, const ACQUISITION_OF_POOL& slave, double side,
                             const IMAGE_PART& part) {
    const double first_s = master.TimeOfLine(static_cast<double>(part.lines.first));
    const double last_s = master.TimeOfLine(static_cast<double>(part.lines.end - 1));
    if (first_s < master.orbit.FirstTime() || last_s > master.orbit.LastTime())
        RefuseCoverage(master, "the lines at " + SecondsText(first_s, last_s));
    const double guess_s = 0.5 * (slave.orbit.FirstTime() + slave.orbit.LastTime());
    SLAVE_LINES seen{1e300, -1e300};
    for (const double time_s : {first_s, last_s}) {
        const ORBIT_STATE state = master.orbit.State(time_s);
        for (const long long sample : {part.samples.first, part.samples.end - 1}) {
            const GEOLOCATION place = geolocation_fast(state.position_m, state.velocity_m_s, side, 0.0,
                                                       master.polar_radius_m, master.equatorial_radius_m,
                                                       master.RangeTimeOfSample(static_cast<double>(sample)), 0.0);
            const auto solution = ZeroDopplerInsideData({&slave.orbit, 0.0}, place.point_m, guess_s);
            if (!solution) RefuseCoverage(slave, "the time at which the slave passes the master's ground");
            const double line = (solution->time_s - slave.first_azimuth_time_s) * slave.line_rate_hz;
            seen.first = std::min(seen.first, line);
            seen.last = std::max(seen.last, line);
        }
    }
    return seen;
}
