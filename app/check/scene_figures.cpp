#include "app/check/scene_figures.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "app/products/disk_room.h"
#include "app/scene/image_to_dem.h"
#include "geometry/calc_slave_time.h"
#include "geometry/vector_arithmetic.h"
#include "simulation/dem2phase.h"

namespace {

constexpr double kSpeedOfLight_m_s = 299792458.0;

/// One pixel of the master: what it sees at a height, and how far the slave is from that.
class CENTRE_PIXEL {
  public:
    explicit CENTRE_PIXEL(const SIMULATION_STATE& state)
        : state_(state),
          time_s_(state.pair.master.first_azimuth_time_s +
                  0.5 * (state.acquisitions.image.lines - 1) / state.pair.master.prf_hz),
          range_time_s_(state.pair.master.near_range_time_s +
                        0.5 * (state.acquisitions.image.samples - 1) / state.pair.master.rsf_hz) {}

    [[nodiscard]] DEM_POSITION At(double height_m) const {
        return IMAGE_TO_DEM(state_.acquisitions, state_.terrain.grid)(time_s_, range_time_s_, height_m);
    }
    [[nodiscard]] double SlaveRange_m(double height_m) const {
        double range_m = 0.0;
        static_cast<void>(SlaveTime_s(At(height_m).point_m, range_m));
        return range_m;
    }

    /// Of the two orbits, as the point sees them, across its line of sight and the track.
    [[nodiscard]] double PerpendicularBaseline_m(const VECTOR_3D<double>& point_m) const {
        double range_m = 0.0;
        const ORBIT_HANDLE& slave = state_.pair.slave.orbit;
        const VECTOR_3D<double> slave_m = slave.orbit->Position(SlaveTime_s(point_m, range_m) + slave.offset_s);
        const ORBIT_STATE master = state_.acquisitions.master.orbit.State(time_s_);
        const VECTOR_3D<double> across = CrossProduct(master.velocity_m_s, point_m - master.position_m);
        return std::fabs(DotProduct(slave_m - master.position_m, across)) / Length(across);
    }

  private:
    [[nodiscard]] double SlaveTime_s(const VECTOR_3D<double>& point_m, double& range_m) const {
        const ACQUISITION_SCENE& slave = state_.pair.slave;
        const double middle_s = 0.5 * (slave.first_azimuth_time_s + slave.last_azimuth_time_s);
        return CalcSlaveTime(slave.orbit, point_m, &range_m, middle_s);
    }

    const SIMULATION_STATE& state_;
    double time_s_;
    double range_time_s_;
};

/// The phase is 4 pi / wavelength times the slave's range, or half as much where the echo left the master: the height
/// over which that changes by one turn, from the ranges of places 100 m apart in height with one range to the master.
double HeightOfAmbiguity_m(const SIMULATION_STATE& state, const CENTRE_PIXEL& pixel, double height_m) {
    constexpr double kHalfStep_m = 50.0;
    const double change = pixel.SlaveRange_m(height_m + kHalfStep_m) - pixel.SlaveRange_m(height_m - kHalfStep_m);
    const double slope = std::fabs(change) / (2.0 * kHalfStep_m);
    if (slope < 1e-12) return std::numeric_limits<double>::infinity();
    const double wavelength_m = kSpeedOfLight_m_s / state.pair.slave.carrier_frequency_hz;
    return wavelength_m / (slope * (state.scene.bistatic ? 1.0 : 2.0));
}

long long Bytes(const MEM_MGR& image) {
    return image.Columns() * image.Rows() * image.BytesPerPixel();
}

double Seconds(const SCENE& scene) {
    const auto begin = std::chrono::steady_clock::now();
    SimulateScene(scene);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

CENTRE_FIGURES FiguresAtCentre(const SIMULATION_STATE& state) {
    const CENTRE_PIXEL pixel(state);
    const double height_m = 0.5 * (state.survey.lowest_m + state.survey.highest_m);
    const DEM_POSITION place = pixel.At(height_m);
    const double longitude_deg = place.longitude_deg > 180.0 ? place.longitude_deg - 360.0 : place.longitude_deg;
    return {longitude_deg, place.latitude_deg, height_m, pixel.PerpendicularBaseline_m(place.point_m),
            HeightOfAmbiguity_m(state, pixel, height_m)};
}

long long MemoryNeeded_bytes(const SIMULATION_STATE& state) {
    const RESULT_IMAGES& images = state.images;
    long long bytes = Bytes(state.terrain.image);
    for (const MEM_MGR* image : {&images.mask, &images.phase, &images.range_shift, &images.azimuth_shift,
                                 &images.x_earth, &images.y_earth, &images.z_earth, &images.height})
        bytes += Bytes(*image);
    for (const MEM_MGR& image : images.normal) bytes += Bytes(image);
    return bytes;
}

long long DiskNeeded_bytes(const SIMULATION_STATE& state) {
    long long bytes = 0;
    for (const PRODUCT_TO_COME& product : ProductsToCome(state.request, state.acquisitions.image, state.sizes))
        bytes += product.Bytes();
    return bytes;
}

double ExpectedSimulationTime_s(const SIMULATION_STATE& state) {
    constexpr double kLongEnough_s = 0.3;
    SCENE piece = state.scene;
    const int first = piece.simulated.first_row;
    const int rows = piece.simulated.last_row - first;
    for (int some = std::min(rows, 16);; some = std::min(rows, 4 * some)) {
        piece.simulated.first_row = first + (rows - some) / 2;
        piece.simulated.last_row = piece.simulated.first_row + some;
        const double elapsed_s = Seconds(piece);
        if (elapsed_s >= kLongEnough_s || some == rows) return elapsed_s * rows / some;
    }
}
