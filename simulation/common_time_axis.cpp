#include "simulation/common_time_axis.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/general_orbit.h"

void CarrySlaveOntoMasterAxis(const ACQUISITION_SCENE& master, ACQUISITION_SCENE& slave) {
    const ORBIT_OF_POOL& master_orbit = *master.orbit.orbit;
    const ORBIT_OF_POOL& slave_orbit = *slave.orbit.orbit;
    if (!master_orbit.HasReferenceOfSameKind(slave_orbit)) {
        LogAndThrow<ERROR_PARAMETER>(
            "single-pass pair: the orbit_reference_time of the master is of the kind \"%s\", that of the slave "
            "\"%s\"; both must be of one kind, since their times are counted from one instant",
            KindOf(master_orbit.ReferenceTime()), KindOf(slave_orbit.ReferenceTime()));
    }
    const double difference_s = master_orbit.SecondsFromReferenceOf(slave_orbit);
    if (difference_s == 0.0) return;
    Log().Message(LOGGING_LEVEL::INFO, " - Slave times carried onto the time axis of the master: %+f [s]",
                  difference_s);
    slave.orbit.offset_s -= difference_s;
    slave.first_azimuth_time_s += difference_s;
    slave.last_azimuth_time_s += difference_s;
}
