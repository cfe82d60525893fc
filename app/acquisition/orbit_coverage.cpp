#include "app/acquisition/orbit_coverage.h"

#include "lib/baselib/logging/logging.h"
#include "orbit/general_orbit.h"

void CheckOrbitCoverage(const ACQUISITION_SCENE& scene, const std::string& pool, const VALUE_SOURCE& start) {
    const double first_s = scene.orbit.orbit->FirstTime();
    const double last_s = scene.orbit.orbit->LastTime();
    const double from_s = scene.first_azimuth_time_s;
    const double to_s = scene.last_azimuth_time_s;
    if (first_s <= from_s && to_s <= last_s) return;
    const double span_s = last_s - first_s;
    const bool hopeless = from_s < first_s - span_s || to_s > last_s + span_s;
    Log().Message(hopeless ? LOGGING_LEVEL::ALARM : LOGGING_LEVEL::WARNING,
                  "%s: the state vectors from %.6f s to %.6f s do not cover the acquisition from %.6f s to %.6f s",
                  pool.c_str(), first_s, last_s, from_s, to_s);
    if (hopeless) RefuseValue(start, from_s, "lies farther outside the state vectors than their own span");
}
