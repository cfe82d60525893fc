/// \file common_time_axis.h

#pragma once

#include "simulation/scene.h"

/// Single-pass pairs: both orbits' times are mixed by the solution, hence counted from one instant. Moves the slave's
/// handle and azimuth times from the slave orbit's reference to the master's, leap seconds counted, and tells so at
/// INFO when the references differ. Slave pixels are differences of two times on one axis and so stay what they were.
/// Errors: references of two kinds (UTC, elapsed time, plain seconds) are logged at ALARM, then ERROR_PARAMETER.
void CarrySlaveOntoMasterAxis(const ACQUISITION_SCENE& master, ACQUISITION_SCENE& slave);
