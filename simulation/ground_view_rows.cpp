#include "simulation/ground_view_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/constants.h"
#include "geometry/pair_geometry.h"
#include "orbit/general_orbit.h"

namespace {

using POINT_M = VECTOR_3D<double>;

/// The last one stands for those that are missing.
void Fill(const float* from, int size, float (&to)[GROUND_BLOCK::kSize]) {
    std::copy_n(from, size, to);
    std::fill(to + size, to + GROUND_BLOCK::kSize, to[size - 1]);
}

void EndAtInfinity(float (&heights_m)[GROUND_BLOCK::kSize]) {
    constexpr auto kEndless_m = static_cast<float>(kEndlessHeight_m);
    for (float& height_m : heights_m)
        height_m = height_m > kEndless_m ? std::numeric_limits<float>::infinity() : height_m;
}

/// Radius of the ellipsoid below a point.
double RadiusBelow(const POINT_M& point_m, double a_m, double b_m) {
    const double across = std::hypot(point_m.x, point_m.y) / a_m;
    return Length(point_m) / std::hypot(across, point_m.z / b_m);
}

/// Where the range meets a sphere about the Earth's centre, in the plane of zero Doppler.
POINT_M OnSphere(const GROUND_FRAME& frame, double range_m, double radius_m) {
    const POINT_M& satellite = frame.own_satellite_m;
    const double below_m = -DotProduct(satellite, frame.own_down);
    const double cosine =
        (DotProduct(satellite, satellite) + range_m * range_m - radius_m * radius_m) / (2.0 * range_m * below_m);
    const double c = std::clamp(cosine, -1.0, 1.0);
    return satellite + range_m * (c * frame.own_down + std::sqrt(1.0 - c * c) * frame.own_out);
}

/// Radius of the ellipsoid where a range meets the ground.
double RadiusAt(const GROUND_FRAME& frame, double range_m, double height_m) {
    double radius_m = frame.a_m;
    for (int i = 0; i < 3; ++i)
        radius_m = RadiusBelow(OnSphere(frame, range_m, radius_m + height_m), frame.a_m, frame.b_m);
    return radius_m;
}

/// About that below the last pixel of a block, for the next one: a few metres do not matter.
double RadiusBehind(const GROUND_FRAME& frame, int first_column, const GROUND_BLOCK& block) {
    constexpr int kLast = GROUND_BLOCK::kSize - 1;
    const double range_m = frame.first_range_m + (first_column + kLast) * frame.range_step_m;
    const POINT_M point_m =
        frame.own_satellite_m + range_m * (block.down[kLast] * frame.own_down + block.out[kLast] * frame.own_out);
    return std::clamp(Length(point_m) - block.height_m[kLast], 0.999 * frame.b_m, 1.001 * frame.a_m);
}

double PolarAxis(const GEODETIC_PARAMETERS& geodetic) {
    return geodetic.a_m * std::sqrt(1.0 - geodetic.e2);
}

/// A direction on the DEM's own axes, as long as a metre of the orbits' frame is there.
POINT_M OwnDirection(const DATUM& datum, const POINT_M& from_m, const POINT_M& direction) {
    constexpr double kFar_m = 1e6;
    return (1.0 / kFar_m) * (DatumInverse(datum, from_m + kFar_m * direction) - DatumInverse(datum, from_m));
}

/// The slave's motion about when it sees the point.
void PlaceSlave(const ACQUISITION_SCENE& slave, const POINT_M& point_m, GROUND_FRAME& frame) {
    double range_m = 0.0;
    const double time_s = CalcSlaveTime(slave.orbit, point_m, &range_m, slave.first_azimuth_time_s);
    const ORBIT_STATE state = slave.orbit.orbit->State(time_s + slave.orbit.offset_s);
    frame.slave_m = state.position_m;
    frame.slave_m_s = state.velocity_m_s;
    frame.slave_m_s2 = state.acceleration_m_s2;
}

}  // namespace

GROUND_VIEW_ROWS::GROUND_VIEW_ROWS(const SCENE& scene, const VIEW_GEOMETRY& geometry)
    : scene_(scene), geometry_(geometry), view_ground_(VELMORA_AT_LEVEL(ChosenVectorLevel(), ViewGround)) {}

void GROUND_VIEW_ROWS::View(int grid_row, int columns, const ROW& row) const {
    const GROUND_FRAME frame = FrameOf(grid_row, columns);
    const float* const heights_m = scene_.earth.radar_dem[grid_row];
    GROUND_BLOCK block{};
    block.radius_m = RadiusAt(frame, frame.first_range_m, heights_m[0]);
    for (int first = 0; first < columns; first += GROUND_BLOCK::kSize) {
        const int size = std::min(GROUND_BLOCK::kSize, columns - first);
        Fill(heights_m + first, size, block.height_m);
        for (int axis = 0; axis < 3; ++axis) {
            const GRID_VIEW<float>& grid = scene_.earth.normal[axis];
            if (grid) Fill(grid[grid_row] + first, size, block.normal[axis]);
        }
        view_ground_(frame, first, block);
        block.radius_m = RadiusBehind(frame, first, block);
        EndAtInfinity(block.views[static_cast<int>(VIEW::HEIGHT_OF_AMBIGUITY_M)]);
        for (int view = 0; view < kViews; ++view) {
            if (row[view] != nullptr) std::copy_n(block.views[view], size, row[view] + first);
        }
    }
}

GROUND_FRAME GROUND_VIEW_ROWS::FrameOf(int grid_row, int columns) const {
    const ACQUISITION_SCENE& master = scene_.master;
    const GEODETIC_PARAMETERS& geodetic = scene_.dem.geodetic;
    const double time_s =
        master.first_azimuth_time_s + static_cast<double>(grid_row) * scene_.earth.azimuth_factor / master.prf_hz;
    const ORBIT_STATE state = master.orbit.orbit->State(time_s + master.orbit.offset_s);
    const POINT_M along = Unit(state.velocity_m_s);
    const POINT_M& satellite = state.position_m;

    GROUND_FRAME frame{};
    frame.satellite_m = satellite;
    frame.down = Unit(DotProduct(satellite, along) * along - satellite);
    frame.out = geometry_.look_sign * CrossProduct(frame.down, along);
    frame.own_satellite_m = DatumInverse(geodetic.datum, satellite);
    frame.own_down = OwnDirection(geodetic.datum, satellite, frame.down);
    frame.own_out = OwnDirection(geodetic.datum, satellite, frame.out);
    frame.a_m = geodetic.a_m;
    frame.b_m = PolarAxis(geodetic);
    frame.normal_a_m = geometry_.a_m;
    frame.normal_b_m = geometry_.b_m;
    frame.first_range_m = 0.5 * kSpeedOfLight * master.near_range_time_s;
    frame.range_step_m = 0.5 * kSpeedOfLight * scene_.earth.range_factor / master.rsf_hz;
    const double wavelength_m = kSpeedOfLight / scene_.slave.carrier_frequency_hz;
    frame.ambiguity_m = scene_.bistatic ? wavelength_m : 0.5 * wavelength_m;

    // The middle of the line tells about when the slave passes: a few metres do not matter.
    const double range_m = frame.first_range_m + 0.5 * columns * frame.range_step_m;
    const double height_m = scene_.earth.radar_dem[grid_row][columns / 2];
    const double radius_m = RadiusAt(frame, range_m, height_m);
    PlaceSlave(scene_.slave, DatumForward(geodetic.datum, OnSphere(frame, range_m, radius_m + height_m)), frame);
    return frame;
}
