#include "benchmarks/plain_kernel/plain_bistatic.h"

#include <cmath>
#include <vector>

#include "geometry/constants.h"
#include "geometry/vector_arithmetic.h"
#include "orbit/fit/svdfit.h"
#include "orbit/general_orbit.h"
#include "simulation/azimuth_shift_correction.h"

double PLAIN_BISTATIC::TravelTime(int sample, const VECTOR_3D<double>& point_m, double receive_time_s) {
    const auto path_s = [&](const ORBIT_HANDLE& handle, double time_s) {
        return Length(handle.orbit->Position(time_s + handle.offset_s) - point_m) / kSpeedOfLight;
    };
    const double receive_path_s = path_s(scene_.slave.orbit, receive_time_s);
    double travel_s = 2.0 * receive_path_s + excess_s_[sample];
    for (int i = 0; i <= 100; ++i) {
        const double previous_s = travel_s;
        travel_s = path_s(scene_.master.orbit, receive_time_s - previous_s) + receive_path_s;
        if (std::abs(travel_s / previous_s - 1.0) < 1e-15) break;
    }
    excess_s_[sample] = travel_s - 2.0 * receive_path_s;
    return travel_s;
}

PLAIN_BISTATIC::EQUIVALENT PLAIN_BISTATIC::Solve(const VECTOR_3D<double>& point_m, double master_time_s,
                                                 double master_range_m, double slave_time_s) {
    const double middle_s = 0.5 * (slave_time_s + master_time_s);
    const long double half_s = 0.5L * aperture_s_;
    const std::vector<long double> abscissa = {-1.0L, 0.0L, 1.0L};  // in half apertures
    const std::vector<long double> sigma(kSamples, 1.0L);
    std::vector<long double> y(kSamples), c(kSamples);
    for (int i = 0; i < kSamples; ++i) {
        const long double travel_s = TravelTime(i, point_m, middle_s + static_cast<double>(abscissa[i] * half_s));
        y[i] = travel_s * travel_s;
    }
    SVDFIT<long double, POLYNOM_FUNCTION<long double>> fit;
    fit.Resize(kSamples, kSamples);
    fit.Fit(abscissa, y, sigma, c);
    const double vertex_s = static_cast<double>(-0.5L * c[1] / c[2] * half_s) + middle_s;
    const double shortest_s = static_cast<double>(std::sqrt(c[0] - 0.25L * c[1] * c[1] / c[2]));
    return {shortest_s * kSpeedOfLight * 0.5, master_range_m / kSpeedOfLight + (vertex_s - shortest_s) +
                                                  AzimuthShiftCorrection(scene_.correction, shortest_s)};
}
