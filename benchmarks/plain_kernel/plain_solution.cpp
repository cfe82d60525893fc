#include "benchmarks/plain_kernel/plain_solution.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "geometry/constants.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/aperture_time.h"

namespace {

constexpr double kSmallestArea = 1e-5;  ///< square pixels

/// The first to ask gets the pixel.
bool Claim(unsigned char& mask) {
    return std::atomic_ref(mask).exchange(1, std::memory_order_relaxed) == 0;
}

bool IsClaimed(unsigned char& mask) {
    return std::atomic_ref(mask).load(std::memory_order_relaxed) != 0;
}

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

struct PLAIN_SOLUTION::WEIGHTS {
    const PLAIN_POINT& p0;
    const PLAIN_POINT& p1;
    const PLAIN_POINT& p2;
    double u;
    double v;
    double w;

    WEIGHTS(int column, int row, const PLAIN_POINT& c0, const PLAIN_POINT& c1, const PLAIN_POINT& c2)
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
    [[nodiscard]] double Of(double PLAIN_POINT::*field) const { return Of(p0.*field, p1.*field, p2.*field); }
    [[nodiscard]] double Of(double VECTOR_3D<double>::*axis) const {
        return Of(p0.position_m.*axis, p1.position_m.*axis, p2.position_m.*axis);
    }
};

PLAIN_SOLUTION::PLAIN_SOLUTION(const SCENE& scene)
    : scene_(scene),
      master_wavelength_m_(kSpeedOfLight / scene.master.carrier_frequency_hz),
      slave_wavelength_m_(kSpeedOfLight / scene.slave.carrier_frequency_hz) {
    if (scene.bistatic) bistatic_.emplace(scene, ReferenceAperture(scene));
}

void PLAIN_SOLUTION::SolveMaster(int slot, int column, int row) {
    PLAIN_POINT& point = points_[slot];
    Get_Earth_Position_From_DEM(scene_.dem, column, row, point.position_m.x, point.position_m.y, point.position_m.z,
                                &point.height_m);
    point.master_time_s =
        CalcSlaveTime(scene_.master.orbit, point.position_m, &point.master_range_m, scene_.master.first_azimuth_time_s);
    point.master_range_time_s = 2.0 * point.master_range_m / kSpeedOfLight;
}

void PLAIN_SOLUTION::SolvePoint(int slot) {
    PLAIN_POINT& point = points_[slot];
    const ACQUISITION_SCENE& master = scene_.master;
    const ACQUISITION_SCENE& slave = scene_.slave;

    double slave_range_m = 0.0;
    double slave_time_s = CalcSlaveTime(slave.orbit, point.position_m, &slave_range_m, slave.first_azimuth_time_s);
    if (bistatic_) {
        const PLAIN_BISTATIC::EQUIVALENT equivalent =
            bistatic_->Solve(point.position_m, point.master_time_s, point.master_range_m, slave_time_s);
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

PLAIN_SOLUTION::PIXEL_BOX PLAIN_SOLUTION::BoundingBox() const {
    const auto by_range = [](const PLAIN_POINT& a, const PLAIN_POINT& b) {
        return a.master_range_pixel < b.master_range_pixel;
    };
    const auto by_azimuth = [](const PLAIN_POINT& a, const PLAIN_POINT& b) {
        return a.master_azimuth_pixel < b.master_azimuth_pixel;
    };
    const auto [near, far] = std::minmax_element(points_.begin(), points_.end(), by_range);
    const auto [early, late] = std::minmax_element(points_.begin(), points_.end(), by_azimuth);
    return {FirstPixel(near->master_range_pixel), LastPixel(far->master_range_pixel, scene_.image.mask.columns),
            FirstPixel(early->master_azimuth_pixel), LastPixel(late->master_azimuth_pixel, scene_.image.mask.rows)};
}

TRIANGLE PLAIN_SOLUTION::InPixels(const CORNERS& triangle) const {
    const auto corner = [this](int slot) -> POINT<double> {
        return {points_[slot].master_range_pixel, points_[slot].master_azimuth_pixel};
    };
    return {corner(triangle[0]), corner(triangle[1]), corner(triangle[2])};
}

bool PLAIN_SOLUTION::IsInside(int column, int row, const CORNERS& triangle) const {
    const TRIANGLE pixels = InPixels(triangle);
    const double area = TriangleArea(pixels.a, pixels.b, pixels.c);
    if (area < kSmallestArea) {
        Log().Message(LOGGING_LEVEL::WARNING, "RADAR_SOLUTION::IsInside : Not triangle, only line");
        return false;
    }
    return IsInsideTriangle({static_cast<double>(column), static_cast<double>(row)}, pixels, area);
}

const PLAIN_SOLUTION::CORNERS* PLAIN_SOLUTION::TriangleAround(int column, int row) const {
    for (const CORNERS& triangle : kTriangles) {
        if (IsInside(column, row, triangle)) return &triangle;
    }
    return nullptr;
}

void PLAIN_SOLUTION::FillTriangles() {
    box_ = BoundingBox();
    for (int row = box_.first_row; row <= box_.last_row; ++row) {
        unsigned char* mask = scene_.image.mask[row];
        for (int column = box_.first_column; column <= box_.last_column; ++column) {
            if (IsClaimed(mask[column])) continue;
            const CORNERS* triangle = TriangleAround(column, row);
            if (triangle != nullptr && Claim(mask[column])) FillPixel(column, row, *triangle);
        }
    }
}

void PLAIN_SOLUTION::FillPixel(int column, int row, const CORNERS& triangle) {
    const WEIGHTS weights(column, row, points_[triangle[0]], points_[triangle[1]], points_[triangle[2]]);
    if (scene_.image.phase_rad) {
        scene_.image.phase_rad[row][column] = static_cast<float>(weights.Of(&PLAIN_POINT::phase_rad));
    }
    FillShifts(column, row, weights);
    FillEarth(column, row, weights);
}

// The grids hold doubles of single precision: the resolution of the 32-bit products made from them.
void PLAIN_SOLUTION::FillShifts(int column, int row, const WEIGHTS& weights) {
    const SHIFT_GRIDS& grids = scene_.shifts;
    shift_written_ = grids.Wanted() && OnSubGrid(row, grids.azimuth_factor, grids.range.rows) &&
                     OnSubGrid(column, grids.range_factor, grids.range.columns);
    if (!shift_written_) return;
    const int sub_row = row / grids.azimuth_factor;
    const int sub_column = column / grids.range_factor;
    grids.range[sub_row][sub_column] = static_cast<float>(weights.Of(&PLAIN_POINT::slave_range_pixel));
    grids.azimuth[sub_row][sub_column] = static_cast<float>(weights.Of(&PLAIN_POINT::slave_azimuth_pixel));
}

void PLAIN_SOLUTION::FillEarth(int column, int row, const WEIGHTS& weights) {
    const EARTH_GRIDS& grids = scene_.earth;
    earth_written_ = false;
    const auto store = [&](const auto& grid, double value) {
        if (!grid || !OnSubGrid(row, grids.azimuth_factor, grid.rows)) return;
        if (!OnSubGrid(column, grids.range_factor, grid.columns)) return;
        grid[row / grids.azimuth_factor][column / grids.range_factor] = static_cast<float>(value);
        earth_written_ = true;
    };
    store(grids.x, weights.Of(&VECTOR_3D<double>::x));
    store(grids.y, weights.Of(&VECTOR_3D<double>::y));
    store(grids.z, weights.Of(&VECTOR_3D<double>::z));
    store(grids.radar_dem, weights.Of(weights.p0.height_m, weights.p1.height_m, weights.p2.height_m));
}
