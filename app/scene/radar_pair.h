/// \file radar_pair.h
/// Both acquisitions in the form that the kernel works with: rates adapted to the oversampling, range times corrected,
/// start and stop times of the simulated area.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "app/request/request.h"
#include "simulation/scene.h"

struct RADAR_PAIR {
    ACQUISITION_SCENE master;
    ACQUISITION_SCENE slave;
};

/// The master image plus the extension.
/// @throws ERROR_PARAMETER when a size exceeds 32 bits
[[nodiscard]] IMAGE_SIZE SimulatedSize(const REQUEST& request, const ACQUISITIONS& acquisitions);

/// Each acquisition on its own orbit's axis. The orbits stay the acquisitions'.
/// @throws ERROR_ARGUMENT for a range time shift that is no number; ERROR_PARAMETER as CheckOrbitCoverage
[[nodiscard]] RADAR_PAIR CorrectedPair(const REQUEST& request, const ACQUISITIONS& acquisitions,
                                       const IMAGE_SIZE& simulated);

/// The same with the slave of a single-pass pair on the master's axis.
/// @throws ERROR_PARAMETER for a correction that moves the slave too far or references of two kinds
[[nodiscard]] RADAR_PAIR OnCommonAxis(RADAR_PAIR pair, const ACQUISITIONS& acquisitions);
