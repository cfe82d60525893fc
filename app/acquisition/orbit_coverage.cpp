#include "app/acquisition/orbit_coverage.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

void Check(const ACQUISITION& acquisition, const std::string& pool) {
    const double first_s = acquisition.orbit.FirstTime();
    const double last_s = acquisition.orbit.LastTime();
    const double from_s = acquisition.first_azimuth_time_s;
    const double to_s = acquisition.azimuth_stop_time_s;
    if (first_s <= from_s && to_s <= last_s) return;
    const double span_s = last_s - first_s;
    const bool hopeless = from_s < first_s - span_s || to_s > last_s + span_s;
    Log().Message(hopeless ? LOGGING_LEVEL::ALARM : LOGGING_LEVEL::WARNING,
                  "%s: the state vectors from %.6f s to %.6f s do not cover the acquisition from %.6f s to %.6f s",
                  pool.c_str(), first_s, last_s, from_s, to_s);
    if (hopeless) throw ERROR_PARAMETER();
}

}  // namespace

void CheckOrbitCoverage(const SIMULATION_STATE& state) {
    Check(state.master, state.configuration.master_pool);
    Check(state.slave, state.configuration.slave_pool);
}
