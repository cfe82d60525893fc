#include "simulation/profile_sight.h"

#include <algorithm>
#include <cmath>

#include "geometry/vector_arithmetic.h"
#include "simulation/neighbour_solver.h"
#include "simulation/radar_pixel.h"

namespace {

constexpr int kLinesBeside = 2000;  ///< satellites farther from the image are not looked at

/// By the law of cosines.
double LookOf(double satellite_radius_m, double range_m, double square_of_radius_m2) {
    return (square_of_radius_m2 - satellite_radius_m * satellite_radius_m - range_m * range_m) /
           (2.0 * satellite_radius_m * range_m);
}

}  // namespace

PROFILE_SIGHT::PROFILE_SIGHT(const SCENE& scene, const TERRAIN_BOUNDS& bounds, int lines)
    : scene_(scene),
      bounds_(bounds),
      prepared_(scene),
      dem_row_(scene.dem, scene.simulated, prepared_.VectorLevel()),
      master_radii_(RadiiOf(scene.master, lines)),
      slave_radii_(RadiiOf(scene.slave, lines)),
      near_end_of_data_(NearEndOfData()) {
    Orient();
}

bool PROFILE_SIGHT::IsInsideData(const VECTOR_3D<double>& point_m) const {
    return ZeroDopplerInsideData(scene_.master.orbit, point_m, scene_.master.first_azimuth_time_s) &&
           ZeroDopplerInsideData(scene_.slave.orbit, point_m, scene_.slave.first_azimuth_time_s);
}

bool PROFILE_SIGHT::NearEndOfData() const {
    const DEM_RANGE& range = scene_.simulated;
    for (const int row : {range.first_row, range.last_row}) {
        for (const int column : {range.first_column, range.last_column}) {
            VECTOR_3D<double> point_m;
            Get_Earth_Position_From_DEM(scene_.dem, column, row, point_m.x, point_m.y, point_m.z);
            if (!IsInsideData(point_m)) return true;
        }
    }
    return false;
}

/// As far beyond the image as the orbit's data go.
PROFILE_SIGHT::RADII PROFILE_SIGHT::RadiiOf(const ACQUISITION_SCENE& acquisition, int lines) {
    const TIME_WINDOW data = DataWindow(acquisition.orbit);
    RADII radii;
    radii.first_line = -kLinesBeside;
    for (int line = -kLinesBeside; line <= lines + kLinesBeside; ++line) {
        const double time_s =
            std::clamp(acquisition.first_azimuth_time_s + line / acquisition.prf_hz, data.first_s, data.last_s);
        radii.radius_m.push_back(Length(acquisition.orbit.orbit->Position(time_s + acquisition.orbit.offset_s)));
    }
    return radii;
}

double PROFILE_SIGHT::RADII::At(double line) const {
    const double place = std::clamp(line - first_line, 0.0, static_cast<double>(radius_m.size()) - 2.0);
    const auto i = static_cast<std::size_t>(place);
    return radius_m[i] + (place - static_cast<double>(i)) * (radius_m[i + 1] - radius_m[i]);
}

/// Which way line and range grow on the DEM, about the middle of the image's place in it.
void PROFILE_SIGHT::Orient() {
    const DEM_RANGE& range = scene_.simulated;
    const int column = (range.first_column + range.last_column) / 2;
    const int row = (range.first_row + range.last_row) / 2;
    const auto see = [&](int c, int r) {
        SEEN seen;
        const auto solution = ZeroDopplerInsideData(scene_.master.orbit, PlaceAtHeight(scene_.dem, c, r, 0.0),
                                                    scene_.master.first_azimuth_time_s);
        if (!solution) return seen;
        seen.line = LineOf(scene_.master, solution->time_s);
        seen.pixel = PixelOf(scene_.master, solution->range_m);
        return seen;
    };
    const SEEN here = see(column, row);
    const SEEN right = see(std::min(column + 1, range.last_column), row);
    const SEEN below = see(column, std::min(row + 1, range.last_row));
    crosses_columns = std::abs(below.line - here.line) >= std::abs(right.line - here.line);
    rises_across = (crosses_columns ? below.line : right.line) > here.line;
    is_reversed = (crosses_columns ? right.pixel : below.pixel) < here.pixel;
}

void PROFILE_SIGHT::See(int row, int& first, int& end, RADAR_ROW& samples, std::vector<SEEN>& seen) const {
    samples.row = row;
    samples.positions_filled = false;
    dem_row_.FillPositions(samples);
    if (near_end_of_data_) Shrink(first, end, samples);
    if (first >= end) return;
    const auto solve = [&](const std::optional<ROW_ORBIT>& orbit, std::vector<double>& time_s,
                           std::vector<double>& range_m) {
        const ROW_POINTS points = {samples[QUANTITY::EARTH_X].data(), samples[QUANTITY::EARTH_Y].data(),
                                   samples[QUANTITY::EARTH_Z].data()};
        static_cast<void>(SolveZeroDopplerRow(prepared_.VectorLevel(), orbit.value(), points,
                                              first - samples.first_column, end - first, time_s.data(),
                                              range_m.data()));
    };
    solve(prepared_.MasterOrbit(), samples.master_time_s, samples.master_range_m);
    solve(prepared_.SlaveOrbit(), samples.slave_time_s, samples.slave_range_m);
    Append(samples, first, end, seen);
}

/// Some interpolations end the process outside the orbit's data.
void PROFILE_SIGHT::Shrink(int& first, int& end, const RADAR_ROW& samples) const {
    const auto is_inside = [&](int column) {
        const int i = column - samples.first_column;
        return IsInsideData(
            {samples[QUANTITY::EARTH_X][i], samples[QUANTITY::EARTH_Y][i], samples[QUANTITY::EARTH_Z][i]});
    };
    while (first < end && !is_inside(first)) ++first;
    while (first < end && !is_inside(end - 1)) --end;
}

void PROFILE_SIGHT::Append(const RADAR_ROW& samples, int first, int end, std::vector<SEEN>& seen) const {
    for (int i = first - samples.first_column; i < end - samples.first_column; ++i) {
        const double x = samples[QUANTITY::EARTH_X][i];
        const double y = samples[QUANTITY::EARTH_Y][i];
        const double z = samples[QUANTITY::EARTH_Z][i];
        const double square_m2 = x * x + y * y + z * z;
        SEEN sample;
        sample.line = LineOf(scene_.master, samples.master_time_s[i]);
        sample.pixel = PixelOf(scene_.master, samples.master_range_m[i]);
        sample.look = LookOf(master_radii_.At(sample.line), samples.master_range_m[i], square_m2);
        const double slave_line = LineOf(scene_.slave, samples.slave_time_s[i]);
        sample.slave_pixel = PixelOf(scene_.slave, samples.slave_range_m[i]);
        sample.slave_look = LookOf(slave_radii_.At(slave_line), samples.slave_range_m[i], square_m2);
        sample.is_terrain = bounds_.Hold(samples[QUANTITY::HEIGHT_M][i]);
        seen.push_back(sample);
    }
}
