/// \file radar_pixel.h
/// The pixel of an image that a zero-Doppler time and a range belong to. Pixels count from 0, centres are whole
/// numbers; times and ranges outside the image give pixels outside it.

#pragma once

#include "geometry/constants.h"
#include "simulation/scene.h"

/// Azimuth pixel.
/// @param time_s  of zero Doppler, in the image's own time
[[nodiscard]] inline double LineOf(const ACQUISITION_SCENE& acquisition, double time_s) {
    return (time_s - acquisition.first_azimuth_time_s) * acquisition.prf_hz;
}

/// Range pixel.
/// @param range_m  one way
[[nodiscard]] inline double PixelOf(const ACQUISITION_SCENE& acquisition, double range_m) {
    return (2.0 * range_m / kSpeedOfLight - acquisition.near_range_time_s) * acquisition.rsf_hz;
}
