/// \file acquisition_parameters.h
/// The second half of stage A, first step: orbits, observation mode and acquisition parameters of master and slave.

#pragma once

#include "app/simulation_state.h"
#include "lib/baselib/pool/parameter_pool.h"

/// Builds both orbits, reads the parameters and adapts the sampling rates to the oversampling of the images.
/// Standard mode reads size and start times of both images from the InSAR pool, permanent-scatterer mode from the
/// acquisitions' own pools.
/// @throws the pool errors; ERROR_ARGUMENT for an unknown observation mode; ERROR_PARAMETER for different oversampling,
///         an unknown look direction, or a value that no computation could use; std::out_of_range for an empty look
///         direction
void ReadAcquisitionParameters(SIMULATION_STATE& state, PARAMETER_POOL& master_pool, PARAMETER_POOL& slave_pool,
                               PARAMETER_POOL& insar_pool);
