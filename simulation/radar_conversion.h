/// \file radar_conversion.h
/// Ranges and times of a run of points as pixels and phase, compiled once per vector level. Arrays do not overlap.

#pragma once

#include "lib/baselib/vectors/vector_level.h"

/// Of one acquisition.
struct PIXEL_SCALE {
    double near_range_time_s;  ///< two-way
    double first_azimuth_time_s;
    double rsf_hz;
    double prf_hz;
};

VELMORA_AT_EVERY_LEVEL(void ConvertToPixels(const PIXEL_SCALE& scale, const double* range_m, const double* time_s,
                                            double* range_pixel, double* azimuth_pixel, int count))

/// The sign is part of the product: a longer slave path gives a larger phase.
VELMORA_AT_EVERY_LEVEL(void ConvertToPhase(double master_wavelength_m, double slave_wavelength_m,
                                           const double* master_range_m, const double* slave_range_m, double* phase_rad,
                                           int count))
