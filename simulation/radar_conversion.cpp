#include "simulation/radar_conversion.h"

#include "geometry/constants.h"

void VELMORA_VECTOR_LEVEL::ConvertToPixels(const PIXEL_SCALE& scale, const double* __restrict range_m,
                                           const double* __restrict time_s, double* __restrict range_pixel,
                                           double* __restrict azimuth_pixel, int count) {
    const PIXEL_SCALE a = scale;
    for (int i = 0; i < count; ++i) {
        range_pixel[i] = (2.0 * range_m[i] / kSpeedOfLight - a.near_range_time_s) * a.rsf_hz;
        azimuth_pixel[i] = (time_s[i] - a.first_azimuth_time_s) * a.prf_hz;
    }
}

void VELMORA_VECTOR_LEVEL::ConvertToPhase(double master_wavelength_m, double slave_wavelength_m,
                                          const double* __restrict master_range_m,
                                          const double* __restrict slave_range_m, double* __restrict phase_rad,
                                          int count) {
    for (int i = 0; i < count; ++i) {
        phase_rad[i] =
            -kTwoPi * 2.0 * (master_range_m[i] / master_wavelength_m - slave_range_m[i] / slave_wavelength_m);
    }
}
