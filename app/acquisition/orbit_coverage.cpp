#include "app/acquisition/orbit_coverage.h"

#include <algorithm>

#include "lib/baselib/logging/logging.h"
#include "orbit/general_orbit.h"

namespace {

/// The kernel looks at the cells beside the image, too: cells of 30 m beside the first and last line reach so far.
constexpr double kReachOfCells_s = 0.05;

/// @param before_s, after_s  what the data hold beyond the image
void WarnAboutReach(const ORBIT_OF_POOL& orbit, const std::string& pool, double before_s, double after_s) {
    const double zero_s = orbit.SecondsFromReferenceToZero();
    Log().Message(
        LOGGING_LEVEL::WARNING,
        "%s: %s ends the run outside its state vectors from %.6f s to %.6f s; they go %.6f s before the first "
        "and %.6f s behind the last line, the cells beside the image need %.3f s: %.6f s and %.6f s are missing",
        pool.c_str(), orbit.Configuration().interpolation.c_str(), orbit.FirstTime() + zero_s,
        orbit.LastTime() + zero_s, before_s, after_s, kReachOfCells_s, std::max(kReachOfCells_s - before_s, 0.0),
        std::max(kReachOfCells_s - after_s, 0.0));
}

}  // namespace

void CheckOrbitCoverage(const ACQUISITION_SCENE& scene, const std::string& pool, const VALUE_SOURCE& start) {
    const double first_s = scene.orbit.orbit->FirstTime();
    const double last_s = scene.orbit.orbit->LastTime();
    const double from_s = scene.first_azimuth_time_s;
    const double to_s = scene.last_azimuth_time_s;
    const double zero_s = scene.orbit.orbit->SecondsFromReferenceToZero();
    if (first_s <= from_s && to_s <= last_s) {
        const bool reached = first_s <= from_s - kReachOfCells_s && to_s + kReachOfCells_s <= last_s;
        if (!reached && scene.orbit.orbit->EndsOutsideItsData())
            WarnAboutReach(*scene.orbit.orbit, pool, from_s - first_s, last_s - to_s);
        return;
    }
    const double span_s = last_s - first_s;
    const bool hopeless = from_s < first_s - span_s || to_s > last_s + span_s;
    Log().Message(hopeless ? LOGGING_LEVEL::ALARM : LOGGING_LEVEL::WARNING,
                  "%s: the state vectors from %.6f s to %.6f s do not cover the acquisition from %.6f s to %.6f s",
                  pool.c_str(), first_s + zero_s, last_s + zero_s, from_s + zero_s, to_s + zero_s);
    if (hopeless) RefuseValue(start, from_s + zero_s, "lies farther outside the state vectors than their own span");
}
