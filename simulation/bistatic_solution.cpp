#include "simulation/bistatic_solution.h"

#include <cmath>
#include <optional>

#include "geometry/constants.h"
#include "geometry/vector_arithmetic.h"
#include "geometry/zero_doppler.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/general_orbit.h"
#include "orbit/fit/svdfit.h"
#include "simulation/azimuth_shift_correction.h"

namespace {

constexpr double kSecondsPerMetre = 3.3356409519815204e-09;  ///< 1 / speed of light
constexpr double kSamplingCentreOffsetSeconds = 0.0;
/// Weight of the delay that grows with the slant of the path (length over its part along the local vertical). The
/// products are those of the straight path in vacuum.
constexpr double kSlantDelaySeconds = 0.0;

/// Travel time of a straight path; unit_vertical is the direction from the Earth's centre to the ground point.
double PathDelay(const VECTOR_3D<double>& path_m, const VECTOR_3D<double>& unit_vertical) {
    const double length_m = Length(path_m);
    if constexpr (kSlantDelaySeconds != 0.0) {
        return length_m * kSecondsPerMetre +
               kSlantDelaySeconds * length_m / std::abs(DotProduct(path_m, unit_vertical));
    }
    return length_m * kSecondsPerMetre;
}

VECTOR_3D<double> PositionAt(const ORBIT_HANDLE& handle, double time_s) {
    return handle.orbit->Position(time_s + handle.offset_s);
}

struct DEM_SAMPLE {
    int column;
    int row;
};

VECTOR_3D<double> EarthPosition(const DEM_GRID& dem, const DEM_SAMPLE& sample) {
    VECTOR_3D<double> point_m;
    Get_Earth_Position_From_DEM(dem, sample.column, sample.row, point_m.x, point_m.y, point_m.z);
    return point_m;
}

}  // namespace

BISTATIC_SOLUTION::BISTATIC_SOLUTION(const SCENE& scene, const SETTINGS& settings)
    : scene_(scene),
      settings_(settings),
      excess_s_(settings.sample_count, 0.0),
      squared_travel_time_(settings.sample_count, 0.0L) {}

void BISTATIC_SOLUTION::PrepareForAperture(double aperture_s) {
    aperture_s_ = aperture_s;
    const double data_s = scene_.slave.orbit.orbit->LastTime() - scene_.slave.orbit.orbit->FirstTime();
    if (!(aperture_s_ > 0.0 && aperture_s_ <= data_s)) {
        Log().Message(
            LOGGING_LEVEL::ALARM,
            "bistatic solution: aperture time %g s of the slave is not above 0 and within its orbit's data of "
            "%g s (az_bandwidth %g Hz, radar_frequency %g Hz)",
            aperture_s_, data_s, scene_.slave.azimuth_bandwidth_hz, scene_.slave.carrier_frequency_hz);
        throw ERROR_PARAMETER();
    }
    PrepareFit();
}

double BISTATIC_SOLUTION::ReferenceAperture() const {
    const ACQUISITION_SCENE& master = scene_.master;
    const ACQUISITION_SCENE& slave = scene_.slave;
    const double middle_s = 0.5 * (master.first_azimuth_time_s + master.last_azimuth_time_s);

    const DEM_SAMPLE dem_centre = {static_cast<int>(scene_.dem.columns * 0.5), static_cast<int>(scene_.dem.rows * 0.5)};
    const VECTOR_3D<double> point_m = EarthPosition(scene_.dem, dem_centre);
    const std::optional<ZERO_DOPPLER> towards_master = ZeroDopplerInsideData(master.orbit, point_m, middle_s);
    if (towards_master) {
        const std::optional<ZERO_DOPPLER> towards_slave =
            ZeroDopplerInsideData(slave.orbit, point_m, towards_master->time_s);
        if (towards_slave) return ApertureAt(point_m, towards_slave->time_s, towards_slave->range_m);
    }

    const DEM_RANGE& area = scene_.simulated;
    const DEM_SAMPLE area_centre = {(area.first_column + area.last_column) / 2, (area.first_row + area.last_row) / 2};
    Log().Message(
        LOGGING_LEVEL::DEBUG,
        "bistatic solution: the DEM's centre lies outside the orbits' data, the reference point is column %d, "
        "row %d",
        area_centre.column, area_centre.row);
    const VECTOR_3D<double> area_point_m = EarthPosition(scene_.dem, area_centre);
    double range_m = 0.0;
    const double master_time_s = CalcSlaveTime(master.orbit, area_point_m, &range_m, middle_s);
    const double slave_time_s = CalcSlaveTime(slave.orbit, area_point_m, &range_m, master_time_s);
    return ApertureAt(area_point_m, slave_time_s, range_m);
}

/// The time over which the slave's Doppler history spans its azimuth bandwidth: bandwidth over the Doppler rate
/// 2 (d . A + V . V) / (wavelength R), d from the point to the satellite.
double BISTATIC_SOLUTION::ApertureAt(const VECTOR_3D<double>& point_m, double slave_time_s,
                                     double slave_range_m) const {
    const ACQUISITION_SCENE& slave = scene_.slave;
    const ORBIT_STATE state = slave.orbit.orbit->State(slave_time_s + slave.orbit.offset_s);
    const double curvature = DotProduct(state.position_m - point_m, state.acceleration_m_s2) +
                             DotProduct(state.velocity_m_s, state.velocity_m_s);
    if (!(curvature > 0.0)) return 0.0;
    return 2.0 * (slave_range_m / kSpeedOfLight) * 0.25 * slave.azimuth_bandwidth_hz * kSpeedOfLight * kSpeedOfLight /
           (curvature * slave.carrier_frequency_hz);
}

/// Receive time of a sample, from the sampling centre.
double BISTATIC_SOLUTION::SampleTime(int sample) const {
    return sample * aperture_s_ / (settings_.sample_count - 1) - 0.5 * aperture_s_;
}

/// The abscissae are the same for every point, so the least-squares fit is one linear map from ordinates to
/// coefficients: its columns are the fits of the unit ordinates. Abscissae are scaled to -1..1, else the fixed
/// threshold on the singular values would drop the quadratic term of a short aperture.
void BISTATIC_SOLUTION::PrepareFit() {
    const int samples = settings_.sample_count;
    if (settings_.order >= samples) {
        Log() << LOGGING_LEVEL::WARNING << "POLYFIT: reduce polynomial fit order " << settings_.order << " -> "
              << samples - 1 << "\n";
        settings_.order = samples - 1;
    }
    const int coefficients = settings_.order + 1;
    fit_operator_.assign(static_cast<std::size_t>(coefficients) * samples, 0.0L);

    std::vector<long double> abscissa(samples);
    for (int i = 0; i < samples; ++i) abscissa[i] = static_cast<long double>(SampleTime(i)) / (0.5L * aperture_s_);
    const std::vector<long double> sigma(samples, 1.0L);
    std::vector<long double> column(coefficients);
    SVDFIT<long double, POLYNOM_FUNCTION<long double>> fit;
    fit.Resize(samples, coefficients);
    for (int i = 0; i < samples; ++i) {
        std::vector<long double> unit(samples, 0.0L);
        unit[i] = 1.0L;
        fit.Fit(abscissa, unit, sigma, column);
        for (int k = 0; k < coefficients; ++k) fit_operator_[k * samples + i] = column[k];
    }
}

/// Travel time master - point - slave of the echo received at a time: a fixed point, since the transmit time depends on
/// it.
double BISTATIC_SOLUTION::TravelTime(int sample, const VECTOR_3D<double>& point_m, double receive_time_s) {
    const VECTOR_3D<double> vertical = (1.0 / Length(point_m)) * point_m;
    const double receive_path_s = PathDelay(PositionAt(scene_.slave.orbit, receive_time_s) - point_m, vertical);
    double travel_s = 2.0 * receive_path_s + excess_s_[sample];
    int further_iterations = 0;
    for (;;) {
        const double previous_s = travel_s;
        const VECTOR_3D<double> transmitter_m = PositionAt(scene_.master.orbit, receive_time_s - previous_s);
        travel_s = PathDelay(transmitter_m - point_m, vertical) + receive_path_s;
        if (std::abs(travel_s / previous_s - 1.0) < settings_.tolerance) break;
        if (further_iterations == kMaxFurtherIterations) break;
        ++further_iterations;
    }
    // The next point lies close by: its travel time exceeds twice the receive path by nearly the same.
    excess_s_[sample] = travel_s - 2.0 * receive_path_s;
    ++histogram_[further_iterations];
    return travel_s;
}

BISTATIC_SOLUTION::PARABOLA BISTATIC_SOLUTION::Fit() const {
    const int samples = settings_.sample_count;
    const auto coefficient = [&](int k) {
        long double sum = 0.0L;
        if (k > settings_.order) return sum;
        for (int i = 0; i < samples; ++i) sum += fit_operator_[k * samples + i] * squared_travel_time_[i];
        return sum;
    };
    const long double scale_s = 0.5L * aperture_s_;
    return {coefficient(0), coefficient(1) / scale_s, coefficient(2) / (scale_s * scale_s)};
}

BISTATIC_SOLUTION::EQUIVALENT BISTATIC_SOLUTION::Solve(const VECTOR_3D<double>& point_m, double master_time_s,
                                                       double master_range_m, double slave_time_s,
                                                       const POINT<int>& dem_index) {
    const double middle_s = 0.5 * (slave_time_s + master_time_s);
    for (int i = 0; i < settings_.sample_count; ++i) {
        const long double travel_s = TravelTime(i, point_m, SampleTime(i) + middle_s + kSamplingCentreOffsetSeconds);
        squared_travel_time_[i] = travel_s * travel_s;
    }
    const PARABOLA y = Fit();
    // A parabola that opens downwards has a longest path; taken for the shortest it would be a silent wrong result.
    const long double radicand = y.c2 > 0.0L ? y.c0 - 0.25L * y.c1 * y.c1 / y.c2 : -1.0L;
    if (radicand < 0.0L) {
        Log().Message(
            LOGGING_LEVEL::ALARM,
            "bistatic solution: the travel times of DEM column %d, row %d have no minimum (squared travel time "
            "%Lg + %Lg t + %Lg t^2); check the orbits of master and slave",
            dem_index.x, dem_index.y, y.c0, y.c1, y.c2);
        throw ERROR_ALGORITHM();
    }
    const double vertex_s = static_cast<double>(-0.5L * y.c1 / y.c2) + middle_s;
    const double shortest_s = static_cast<double>(std::sqrt(radicand));
    return {shortest_s * kSpeedOfLight * 0.5, master_range_m / kSpeedOfLight + (vertex_s - shortest_s) +
                                                  AzimuthShiftCorrection(scene_.correction, shortest_s)};
}

void BISTATIC_SOLUTION::LogStatistics() const {
    Log().Message(LOGGING_LEVEL::TRACE, "BISTATIC_B: histogram of iterations:");
    for (std::size_t i = 0; i < histogram_.size(); ++i) {
        if (histogram_[i] == 0) continue;
        Log().Message(LOGGING_LEVEL::TRACE, "%d iterations: %lld occurrences", static_cast<int>(i) + 1, histogram_[i]);
    }
}
