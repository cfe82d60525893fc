#include "app/check/scene_figures.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "app/products/flag_product.h"
#include "app/products/wanted_products.h"
#include "app/scene/image_to_dem.h"
#include "geometry/calc_slave_time.h"
#include "geometry/constants.h"
#include "geometry/pair_geometry.h"
#include "lib/baselib/image/disk_room.h"
#include "simulation/dem2phase.h"

namespace {

double Turn_m(const SIMULATION_STATE& state) {
    const double wavelength_m = kSpeedOfLight / state.pair.slave.carrier_frequency_hz;
    return state.scene.bistatic ? wavelength_m : 0.5 * wavelength_m;
}

PAIR_GEOMETRY PairAt(const SIMULATION_STATE& state, double time_s, const VECTOR_3D<double>& point_m, double height_m) {
    const ACQUISITION_SCENE& slave = state.pair.slave;
    const double middle_s = 0.5 * (slave.first_azimuth_time_s + slave.last_azimuth_time_s);
    double range_m = 0.0;
    const double slave_time_s = CalcSlaveTime(slave.orbit, point_m, &range_m, middle_s);
    const ELLIPSOID_RADII& ellipsoid = state.acquisitions.ellipsoid;
    const VECTOR_3D<double> up = UpAt(point_m, ellipsoid.equatorial_m + height_m, ellipsoid.polar_m + height_m);
    return PairGeometryAt(point_m, up, state.acquisitions.master.orbit.State(time_s),
                          slave.orbit.orbit->Position(slave_time_s + slave.orbit.offset_s), Turn_m(state));
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
    const ACQUISITION_SCENE& master = state.pair.master;
    const IMAGE_SIZE& image = state.acquisitions.image;
    const double time_s = master.first_azimuth_time_s + 0.5 * (image.lines - 1) / master.prf_hz;
    const double range_time_s = master.near_range_time_s + 0.5 * (image.samples - 1) / master.rsf_hz;
    const double height_m = 0.5 * (state.survey.lowest_m + state.survey.highest_m);
    const DEM_POSITION place = IMAGE_TO_DEM(state.acquisitions, state.terrain.grid)(time_s, range_time_s, height_m);
    const double longitude_deg = place.longitude_deg > 180.0 ? place.longitude_deg - 360.0 : place.longitude_deg;
    const PAIR_GEOMETRY pair = PairAt(state, time_s, place.point_m, height_m);
    return {longitude_deg, place.latitude_deg, height_m, std::fabs(pair.perpendicular_baseline_m),
            pair.height_of_ambiguity_m};
}

long long MemoryNeeded_bytes(const SIMULATION_STATE& state) {
    const RESULT_IMAGES& images = state.images;
    long long bytes = Bytes(state.terrain.image);
    for (const MEM_MGR* image : {&images.mask, &images.phase, &images.range_shift, &images.azimuth_shift,
                                 &images.x_earth, &images.y_earth, &images.z_earth, &images.height})
        bytes += Bytes(*image);
    for (const MEM_MGR& image : images.normal) bytes += Bytes(image);
    const double flags = FlagsMemory_bytes(state.request, state.place.simulated, state.acquisitions.image);
    return bytes + static_cast<long long>(flags);
}

long long DiskNeeded_bytes(const SIMULATION_STATE& state) {
    long long bytes = 0;
    for (const PRODUCT_REQUEST& product : WantedProducts(state.request, state.acquisitions.image, state.sizes))
        bytes += FileBytes(product);
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
