#include "simulation/radar_solution.h"

#include <algorithm>
#include <cmath>

#include "geometry/constants.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr double kSmallestArea = 1e-5;  ///< square pixels

/// Whether a master index has a place in a sub-sampled grid of that many elements.
bool OnSubGrid(int index, int factor, int size) {
    return index % factor == 0 && index / factor < size;
}

/// First integer pixel of a span, at least 0. The pixels of a hopeless corner may exceed an int, hence the order.
int FirstPixel(double lowest) {
    return static_cast<int>(std::clamp(std::floor(lowest), 0.0, 2147483647.0));
}

int LastPixel(double highest, int size) {
    return static_cast<int>(std::clamp(std::ceil(highest), -1.0, size - 1.0));
}

}  // namespace

struct RADAR_SOLUTION::WEIGHTS {
    const RADAR_POINT& p0;
    const RADAR_POINT& p1;
    const RADAR_POINT& p2;
    double u;
    double v;
    double w;

    WEIGHTS(int column, int row, const RADAR_POINT& c0, const RADAR_POINT& c1, const RADAR_POINT& c2)
        : p0(c0), p1(c1), p2(c2) {
        const double dx = column - p0.master_range_pixel;
        const double dy = row - p0.master_azimuth_pixel;
        const double x1 = p1.master_range_pixel - p0.master_range_pixel;
        const double y1 = p1.master_azimuth_pixel - p0.master_azimuth_pixel;
        const double x2 = p2.master_range_pixel - p0.master_range_pixel;
        const double y2 = p2.master_azimuth_pixel - p0.master_azimuth_pixel;
        const double determinant = x1 * y2 - y1 * x2;
        u = (y2 * dx - x2 * dy) / determinant;
        v = (x1 * dy - y1 * dx) / determinant;
        w = 1.0 - u - v;
    }

    [[nodiscard]] double Of(double v0, double v1, double v2) const { return w * v0 + u * v1 + v * v2; }
    [[nodiscard]] double Of(double RADAR_POINT::*field) const { return Of(p0.*field, p1.*field, p2.*field); }
    [[nodiscard]] double Of(double VECTOR_3D<double>::*axis) const {
        return Of(p0.position_m.*axis, p1.position_m.*axis, p2.position_m.*axis);
    }
};

RADAR_SOLUTION::RADAR_SOLUTION(const SCENE& scene, BLOCK_CLAIMS& claims)
    : scene_(scene),
      claims_(claims),
      master_wavelength_m_(kSpeedOfLight / scene.master.carrier_frequency_hz),
      slave_wavelength_m_(kSpeedOfLight / scene.slave.carrier_frequency_hz),
      bistatic_(scene) {}

RADAR_SOLUTION::~RADAR_SOLUTION() {
    bistatic_.LogStatistics();
}

void RADAR_SOLUTION::SolveMaster(int slot, int column, int row) {
    RADAR_POINT& point = points_[slot];
    point.dem_index = {column, row};
    Get_Earth_Position_From_DEM(scene_.dem, column, row, point.position_m.x, point.position_m.y, point.position_m.z,
                                &point.height_m);
    point.master_time_s =
        CalcSlaveTime(scene_.master.orbit, point.position_m, &point.master_range_m, scene_.master.first_azimuth_time_s);
    point.master_range_time_s = 2.0 * point.master_range_m / kSpeedOfLight;
}

void RADAR_SOLUTION::SolvePoint(int slot, bool bistatic) {
    RADAR_POINT& point = points_[slot];
    const ACQUISITION_SCENE& master = scene_.master;
    const ACQUISITION_SCENE& slave = scene_.slave;

    double slave_range_m = 0.0;
    double slave_time_s = CalcSlaveTime(slave.orbit, point.position_m, &slave_range_m, slave.first_azimuth_time_s);
    if (bistatic) {
        const BISTATIC_SOLUTION::EQUIVALENT equivalent =
            bistatic_.Solve(point.position_m, point.master_time_s, point.master_range_m, slave_time_s, point.dem_index);
        slave_range_m = equivalent.range_m;
        slave_time_s = equivalent.time_s;
    }

    point.master_range_pixel = (2.0 * point.master_range_m / kSpeedOfLight - master.near_range_time_s) * master.rsf_hz;
    point.master_azimuth_pixel = (point.master_time_s - master.first_azimuth_time_s) * master.prf_hz;
    // The sign is part of the product: a longer slave path gives a larger phase.
    point.phase_rad =
        -kTwoPi * 2.0 * (point.master_range_m / master_wavelength_m_ - slave_range_m / slave_wavelength_m_);
    if (scene_.shifts.Wanted()) {
        point.slave_range_pixel = (2.0 * slave_range_m / kSpeedOfLight - slave.near_range_time_s) * slave.rsf_hz;
        point.slave_azimuth_pixel = (slave_time_s - slave.first_azimuth_time_s) * slave.prf_hz;
    }
}

RADAR_SOLUTION::PIXEL_BOX RADAR_SOLUTION::BoundingBox() const {
    const auto by_range = [](const RADAR_POINT& a, const RADAR_POINT& b) {
        return a.master_range_pixel < b.master_range_pixel;
    };
    const auto by_azimuth = [](const RADAR_POINT& a, const RADAR_POINT& b) {
        return a.master_azimuth_pixel < b.master_azimuth_pixel;
    };
    const auto [near, far] = std::minmax_element(points_.begin(), points_.end(), by_range);
    const auto [early, late] = std::minmax_element(points_.begin(), points_.end(), by_azimuth);
    return {FirstPixel(near->master_range_pixel), LastPixel(far->master_range_pixel, scene_.image.columns),
            FirstPixel(early->master_azimuth_pixel), LastPixel(late->master_azimuth_pixel, scene_.image.rows)};
}

TRIANGLE RADAR_SOLUTION::InPixels(const CORNERS& triangle) const {
    const auto corner = [this](int slot) -> POINT<double> {
        return {points_[slot].master_range_pixel, points_[slot].master_azimuth_pixel};
    };
    return {corner(triangle[0]), corner(triangle[1]), corner(triangle[2])};
}

bool RADAR_SOLUTION::IsInside(int column, int row, const CORNERS& triangle) const {
    const TRIANGLE pixels = InPixels(triangle);
    const double area = TriangleArea(pixels.a, pixels.b, pixels.c);
    if (area < kSmallestArea) {
        Log().Message(LOGGING_LEVEL::WARNING, "RADAR_SOLUTION::IsInside : Not triangle, only line");
        return false;
    }
    return IsInsideTriangle({static_cast<double>(column), static_cast<double>(row)}, pixels, area);
}

const RADAR_SOLUTION::CORNERS* RADAR_SOLUTION::TriangleAround(int column, int row) const {
    for (const CORNERS& triangle : kTriangles) {
        if (IsInside(column, row, triangle)) return &triangle;
    }
    return nullptr;
}

void RADAR_SOLUTION::FillTriangles() {
    box_ = BoundingBox();
    for (int row = box_.first_row; row <= box_.last_row; ++row) {
        unsigned char* mask = scene_.image.mask[row];
        for (int column = box_.first_column; column <= box_.last_column; ++column) {
            if (!claims_.IsOpen(mask[column])) continue;
            if (const CORNERS* triangle = TriangleAround(column, row)) FillPixel(column, row, *triangle);
        }
    }
}

void RADAR_SOLUTION::FillPixel(int column, int row, const CORNERS& triangle) {
    const CLAIM claim = claims_.Claim(scene_.image.mask[row][column]);
    if (claim == CLAIM::REFUSED) return;
    const WEIGHTS weights(column, row, points_[triangle[0]], points_[triangle[1]], points_[triangle[2]]);
    const PIXEL_VALUES values = ValuesAt(column, row, weights);
    shift_written_ = values.on_shift_grid;
    earth_written_ = values.on_earth_grid;
    if (claim == CLAIM::WRITE_NOW) {
        StorePixel(scene_, row, column, values);
    } else {
        claims_.Keep(row, column, values);
    }
}

// All values go through float, also those of grids of doubles: the resolution of the 32-bit products made from them.
PIXEL_VALUES RADAR_SOLUTION::ValuesAt(int column, int row, const WEIGHTS& weights) const {
    const SHIFT_GRIDS& shifts = scene_.shifts;
    const EARTH_GRIDS& earth = scene_.earth;
    PIXEL_VALUES values;
    values.phase_rad = static_cast<float>(weights.Of(&RADAR_POINT::phase_rad));
    values.on_shift_grid = shifts.Wanted() && OnSubGrid(row, shifts.azimuth_factor, shifts.rows) &&
                           OnSubGrid(column, shifts.range_factor, shifts.columns);
    if (values.on_shift_grid) {
        values.slave_range = static_cast<float>(weights.Of(&RADAR_POINT::slave_range_pixel));
        values.slave_azimuth = static_cast<float>(weights.Of(&RADAR_POINT::slave_azimuth_pixel));
    }
    values.on_earth_grid = earth.Wanted() && OnSubGrid(row, earth.azimuth_factor, earth.rows) &&
                           OnSubGrid(column, earth.range_factor, earth.columns);
    if (values.on_earth_grid) {
        values.x_m = static_cast<float>(weights.Of(&VECTOR_3D<double>::x));
        values.y_m = static_cast<float>(weights.Of(&VECTOR_3D<double>::y));
        values.z_m = static_cast<float>(weights.Of(&VECTOR_3D<double>::z));
        values.height_m = static_cast<float>(weights.Of(weights.p0.height_m, weights.p1.height_m, weights.p2.height_m));
    }
    return values;
}
