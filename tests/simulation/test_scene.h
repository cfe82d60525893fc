/// \file test_scene.h
/// A small scene over an inclined plane: two circular orbits in closed form, a DEM whose heights grow by whole metres
/// per row and column, and the grids for the products. Everything about it can be computed another way.

#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "geometry/constants.h"
#include "geometry/geolocation_fast.h"
#include "simulation/dem2phase.h"
#include "simulation/scene.h"
#include "tests/kit/circular_orbit.h"
#include "tests/kit/orbit_pools.h"

/// Pixels of one grid. Behind every row stand elements that belong to nobody: a write into them ends the test.
template <class T>
class TEST_GRID {
  public:
    TEST_GRID(int rows, int columns, T value) : rows_(rows), columns_(columns) { Fill(value); }
    TEST_GRID(const TEST_GRID&) = delete;  // views point into it
    TEST_GRID& operator=(const TEST_GRID&) = delete;
    ~TEST_GRID() {
        for (int row = 0; row < rows_; ++row) {
            const T* const beside = View()[row] + columns_;
            if (std::count(beside, beside + kBeside, kNobodys) == kBeside) continue;
            std::fprintf(stderr, "something was written behind row %d of a grid\n", row);
            std::abort();
        }
    }
    [[nodiscard]] GRID_VIEW<T> View() { return {pixels_.data(), columns_ + kBeside, rows_, columns_}; }
    [[nodiscard]] GRID_VIEW<const T> View() const { return {pixels_.data(), columns_ + kBeside, rows_, columns_}; }
    bool operator==(const TEST_GRID& other) const { return pixels_ == other.pixels_; }
    [[nodiscard]] T At(int row, int column) const { return pixels_[row * (columns_ + kBeside) + column]; }
    void Fill(T value) {
        pixels_.assign(static_cast<std::size_t>(rows_) * (columns_ + kBeside), kNobodys);
        for (int row = 0; row < rows_; ++row) std::fill_n(View()[row], columns_, value);
    }

  private:
    static constexpr int kBeside = 11;
    static constexpr T kNobodys = 77;
    int rows_;
    int columns_;
    std::vector<T> pixels_;
};

struct SCENE_REQUEST {
    const char* name = "descending, right, GEO";
    double argument_rad = 2.2;  ///< beyond a quarter turn the satellite flies south
    double look = 1.0;
    const char* kind = "GEO";
    bool bessel = false;  ///< DEM on another ellipsoid with a seven-parameter datum
    int height_at_corner_m = 400;
    int height_per_row_m = 2;
    int height_per_column_m = -1;
    int image_rows = 60;
    int image_columns = 70;
    int dem_size = 90;
    int shift_azimuth_factor = 1;
    int shift_range_factor = 1;
    int earth_azimuth_factor = 1;
    int earth_range_factor = 1;
};

inline const DATUM kBesselDatum = {
    false,
    {598.1, 73.7, 418.2},
    1.0000067,
    {{1.0, -1.18997e-05, 2.18e-07}, {1.18997e-05, 1.0, 9.79e-07}, {-2.18e-07, -9.79e-07, 1.0}}};

/// Owns everything that its SCENE points to.
class TEST_SCENE {
  public:
    explicit TEST_SCENE(const SCENE_REQUEST& r)
        : request(r),
          master_motion{7071000.0, 1.71, 0.4, r.argument_rad},
          slave_motion{7071120.0, 1.71, 0.4 + 6e-6, r.argument_rad - 3e-4},
          master_orbit(OrbitFrom(MotionOf(master_motion))),
          slave_orbit(OrbitFrom(MotionOf(slave_motion))),
          heights(r.dem_size + 1, r.dem_size + 1, 0),
          mask(r.image_rows, r.image_columns, 0),
          phase(r.image_rows, r.image_columns, 0.0F),
          shift_range(SubGrid<double>(r.shift_azimuth_factor, r.shift_range_factor)),
          shift_azimuth(SubGrid<double>(r.shift_azimuth_factor, r.shift_range_factor)),
          x(SubGrid<double>(r.earth_azimuth_factor, r.earth_range_factor)),
          y(SubGrid<double>(r.earth_azimuth_factor, r.earth_range_factor)),
          z(SubGrid<double>(r.earth_azimuth_factor, r.earth_range_factor)),
          radar_dem(SubGrid<float>(r.earth_azimuth_factor, r.earth_range_factor)) {
        FillAcquisitions();
        FillDem();
        FillArea();
        ConnectGrids();
    }
    TEST_SCENE(const TEST_SCENE&) = delete;
    TEST_SCENE& operator=(const TEST_SCENE&) = delete;

    SOLUTION_COUNTS Run() { return SimulateScene(scene); }

    /// Bit for bit.
    [[nodiscard]] bool HasGridsOf(const TEST_SCENE& other) const {
        return mask == other.mask && phase == other.phase && shift_range == other.shift_range &&
               shift_azimuth == other.shift_azimuth && x == other.x && y == other.y && z == other.z &&
               radar_dem == other.radar_dem;
    }

    [[nodiscard]] int MaskCount() const {
        int count = 0;
        for (int row = 0; row < request.image_rows; ++row) {
            for (int column = 0; column < request.image_columns; ++column) count += mask.At(row, column) != 0;
        }
        return count;
    }

    /// The plane's point at fractional DEM indices, in the frame of the orbits.
    [[nodiscard]] VECTOR_3D<double> PointAt(double column, double row) const {
        const double height_m = HeightAt(column, row);
        GEOGRAPHIC g = {(scene.dem.x0 + column * scene.dem.dx) * kRadiansPerDegree,
                        (scene.dem.y0 - row * scene.dem.dy) * kRadiansPerDegree, height_m};
        if (scene.dem.utm) {
            const MAP_GEOGRAPHIC m =
                scene.dem.utm->Inverse({scene.dem.x0 + column * scene.dem.dx, scene.dem.y0 - row * scene.dem.dy});
            g = {m.longitude_rad, m.latitude_rad, height_m};
        }
        return DatumForward(scene.dem.geodetic.datum,
                            GeographicToCartesian(g, scene.dem.geodetic.a_m, scene.dem.geodetic.e2));
    }
    [[nodiscard]] double HeightAt(double column, double row) const { return SampleAt(column, row) + kOffset_m; }

    SCENE_REQUEST request;
    CIRCULAR_ORBIT<double> master_motion;
    CIRCULAR_ORBIT<double> slave_motion;
    std::unique_ptr<ORBIT_OF_POOL> master_orbit;
    std::unique_ptr<ORBIT_OF_POOL> slave_orbit;
    TEST_GRID<short> heights;
    TEST_GRID<unsigned char> mask;
    TEST_GRID<float> phase;
    TEST_GRID<double> shift_range;
    TEST_GRID<double> shift_azimuth;
    TEST_GRID<double> x;
    TEST_GRID<double> y;
    TEST_GRID<double> z;
    TEST_GRID<float> radar_dem;
    SCENE scene;

  private:
    static constexpr double kNearRangeTime_s = 0.0058;
    static constexpr double kOffset_m = 12.5;

    [[nodiscard]] double SampleAt(double column, double row) const {
        return request.height_at_corner_m + request.height_per_row_m * row + request.height_per_column_m * column;
    }

    template <class T>
    [[nodiscard]] TEST_GRID<T> SubGrid(int azimuth_factor, int range_factor) const {
        return TEST_GRID<T>((request.image_rows - 1) / azimuth_factor + 1,
                            (request.image_columns - 1) / range_factor + 1, T(0));
    }

    static void FillRates(ACQUISITION_SCENE& a, const SCENE_REQUEST& r) {
        a.prf_hz = 700.0;
        a.azimuth_sampling_interval_s = 1.0 / a.prf_hz;
        a.rsf_hz = 15e6;
        a.range_sampling_interval_s = 1.0 / a.rsf_hz;
        a.carrier_frequency_hz = 5.405e9;
        a.azimuth_bandwidth_hz = 500.0;
        a.last_azimuth_time_s = a.first_azimuth_time_s + (r.image_rows - 1) / a.prf_hz;
        a.far_range_time_s = a.near_range_time_s + (r.image_columns - 1) / a.rsf_hz;
    }

    void FillAcquisitions() {
        scene.master.orbit = {master_orbit.get(), 0.0};
        scene.slave.orbit = {slave_orbit.get(), 0.0};
        scene.master.first_azimuth_time_s = -0.5 * request.image_rows / 700.0;
        scene.master.near_range_time_s = kNearRangeTime_s;
        FillRates(scene.master, request);
        const double middle_range_s = 0.5 * (scene.master.near_range_time_s + scene.master.far_range_time_s);
        centre_m = geolocation_fast(master_motion.Position(0.0), master_motion.Velocity(0.0), request.look,
                                    HeightAt(0.5 * request.dem_size, 0.5 * request.dem_size), 6356752.315, 6378137.0,
                                    middle_range_s, 0.0)
                       .point_m;
        double range_m = 0.0;
        const double time_s = CalcSlaveTime(scene.slave.orbit, centre_m, &range_m, 0.0);
        scene.slave.first_azimuth_time_s = time_s - 0.5 * request.image_rows / 700.0 + 3.1e-3;
        scene.slave.near_range_time_s = 2.0 * range_m / kSpeedOfLight - (middle_range_s - kNearRangeTime_s) - 2.7e-7;
        FillRates(scene.slave, request);
    }

    void FillDem() {
        DEM_GRID& dem = scene.dem;
        dem.kind = request.kind;
        dem.rows = dem.columns = request.dem_size + 1;
        dem.geodetic = {6378137.0, SquaredEccentricity(6378137.0, 6356752.315), {}};
        if (request.bessel) dem.geodetic = {6377397.155, SquaredEccentricity(6377397.155, 6356078.965), kBesselDatum};
        const GEOGRAPHIC centre =
            CartesianToGeographic(DatumInverse(dem.geodetic.datum, centre_m), dem.geodetic.a_m, dem.geodetic.e2);
        const double half = 0.5 * request.dem_size;
        if (dem.kind != "GEO") {
            const int zone = static_cast<int>(std::floor((centre.longitude_rad / kRadiansPerDegree + 180.0) / 6.0)) + 1;
            dem.utm.emplace(dem.geodetic.a_m, dem.geodetic.e2, zone, centre.latitude_rad < 0.0);
            const MAP_POSITION map = dem.utm->Forward({centre.longitude_rad, centre.latitude_rad});
            dem.dx = dem.dy = 30.0;
            dem.x0 = map.easting_m - half * dem.dx;
            dem.y0 = map.northing_m + half * dem.dy;
        } else {
            dem.dy = 30.0 / 111300.0;
            dem.dx = dem.dy / std::cos(centre.latitude_rad);
            dem.x0 = centre.longitude_rad * kDegreesPerRadian - half * dem.dx;
            dem.y0 = centre.latitude_rad * kDegreesPerRadian + half * dem.dy;
        }
        for (int row = 0; row < dem.rows; ++row) {
            for (int column = 0; column < dem.columns; ++column) {
                heights.View()[row][column] = static_cast<short>(SampleAt(column, row));
            }
        }
        dem.height_offset_m = kOffset_m;
        dem.heights = heights.View();
        scene.simulated = {0, request.dem_size, 0, request.dem_size};
    }

    /// One quadrilateral around the whole DEM.
    void FillArea() {
        const double last = request.dem_size + 1.0;
        scene.area = {{{-1.0, -1.0}}, {{-1.0, last}}, {{last, -1.0}}, {{last, last}}};
    }

    void ConnectGrids() {
        scene.image = {mask.View(), phase.View()};
        scene.shifts = {request.shift_azimuth_factor, request.shift_range_factor, shift_range.View(),
                        shift_azimuth.View()};
        scene.earth = {
            request.earth_azimuth_factor, request.earth_range_factor, x.View(), y.View(), z.View(), radar_dem.View()};
    }

    VECTOR_3D<double> centre_m{};
};
