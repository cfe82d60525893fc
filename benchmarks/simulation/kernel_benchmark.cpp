/// \file kernel_benchmark.cpp
/// The phase kernel's two halves in one thread, each with its ratio to the plain kernel in the same run:
/// ZeroDoppler/<interpolation>: both solutions, towards master and slave, of DEM points; items are points.
/// Rasteriser/<layers>: filling cells of 5 x 5 pixels; items are cells, "pixels" are pixels per second.
/// "plain" is the plain kernel's time for one item over this one's.

#include <benchmark/benchmark.h>

#include <chrono>
#include <random>

#include "benchmarks/plain_kernel/plain_solution.h"
#include "geometry/zero_doppler_rows.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/triangle_filler.h"
#include "tests/simulation/test_scene.h"

namespace {

constexpr int kRepetitions = 5;

void Quiet() {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    setenv("PARALLEL", "1", 1);
}

template <class WORK>
double SecondsOf(WORK work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ZeroDoppler(benchmark::State& state, const char* interpolation) {
    Quiet();
    TEST_SCENE s({});
    const auto master = OrbitFrom(MotionOf(s.master_motion), interpolation);
    const auto slave = OrbitFrom(MotionOf(s.slave_motion), interpolation);
    constexpr int kPoints = 4096;
    std::vector<double> x, y, z, time_s(kPoints), range_m(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        const VECTOR_3D<double> p = s.PointAt(0.02 * i, 0.5 * (i % 7));
        x.push_back(p.x);
        y.push_back(p.y);
        z.push_back(p.z);
    }
    const double guess_s = s.scene.master.first_azimuth_time_s;
    const COMPILED_ORBIT compiled_master(*master, -5.0, 5.0);
    const COMPILED_ORBIT compiled_slave(*slave, -5.0, 5.0);
    const ROW_ORBIT orbits[] = {{{master.get(), 0.0}, &compiled_master, guess_s},
                                {{slave.get(), 0.0}, &compiled_slave, guess_s}};
    const double plain_s = SecondsOf([&] {
        for (int i = 0; i < kPoints; ++i) {
            for (const ROW_ORBIT& orbit : orbits) {
                benchmark::DoNotOptimize(CalcSlaveTime(orbit.handle, {x[i], y[i], z[i]}, &range_m[i], guess_s));
            }
        }
    });
    double fast_s = 0.0;
    for (auto _ : state) {
        fast_s += SecondsOf([&] {
            for (const ROW_ORBIT& orbit : orbits) {
                benchmark::DoNotOptimize(SolveZeroDopplerRow(ChosenVectorLevel(), orbit, {x.data(), y.data(), z.data()},
                                                             0, kPoints, time_s.data(), range_m.data()));
            }
        });
        benchmark::DoNotOptimize(range_m.data());
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
    state.counters["plain"] = plain_s / (fast_s / static_cast<double>(state.iterations()));
}

/// A sheet of cells, a little turned and stretched, over the whole image.
struct SHEET {
    static constexpr int kCells = 400;
    static constexpr int kPixels = 2000;

    explicit SHEET(int layers) : scene({.image_rows = kPixels, .image_columns = kPixels, .dem_size = 40}) {
        SCENE& s = scene.scene;
        s.simulated = {0, kCells, 0, kCells};
        if (layers < 7) s.earth.x = s.earth.y = s.earth.z = {};
        if (layers < 7) s.shifts.range = s.shifts.azimuth = {};
        if (layers < 2) s.earth.radar_dem = {};
    }

    void Fill(RADAR_ROW& row, int r) const {
        for (int i = 0; i < row.size; ++i) {
            for (int q = 0; q < kQuantities; ++q) row[static_cast<QUANTITY>(q)][i] = 10.0 * q + 0.3 * i + 0.1 * r;
            row[QUANTITY::RANGE_PIXEL][i] = 5.01 * i + 0.4 * std::sin(0.1 * r);
            row[QUANTITY::AZIMUTH_PIXEL][i] = 4.9 * r + 0.1 * i;
        }
    }

    void Clear() { scene.mask.Fill(0); }

    TEST_SCENE scene;
};

double PlainSeconds(SHEET& sheet) {
    RADAR_ROW upper(sheet.scene.scene.simulated), lower(sheet.scene.scene.simulated);
    PLAIN_SOLUTION plain(sheet.scene.scene);
    double seconds = 0.0;
    for (int r = 0; r < SHEET::kCells; ++r) {
        sheet.Fill(upper, r);
        sheet.Fill(lower, r + 1);
        seconds += SecondsOf([&] {
            for (int i = 0; i < SHEET::kCells; ++i) {
                for (int slot = 0; slot < 4; ++slot) {
                    const RADAR_ROW& v = slot < 2 ? upper : lower;
                    const int at = i + slot % 2;
                    PLAIN_POINT& point = plain.EditPoint(slot);
                    point.position_m = {v[QUANTITY::EARTH_X][at], v[QUANTITY::EARTH_Y][at], v[QUANTITY::EARTH_Z][at]};
                    point.master_range_pixel = v[QUANTITY::RANGE_PIXEL][at];
                    point.master_azimuth_pixel = v[QUANTITY::AZIMUTH_PIXEL][at];
                    point.phase_rad = v[QUANTITY::PHASE_RAD][at];
                    point.slave_range_pixel = v[QUANTITY::SLAVE_RANGE_PIXEL][at];
                    point.slave_azimuth_pixel = v[QUANTITY::SLAVE_AZIMUTH_PIXEL][at];
                    point.height_m = static_cast<float>(v[QUANTITY::HEIGHT_M][at]);
                }
                plain.FillTriangles();
            }
        });
    }
    return seconds;
}

void Rasteriser(benchmark::State& state) {
    Quiet();
    SHEET sheet(static_cast<int>(state.range(0)));
    const double plain_s = PlainSeconds(sheet);
    double fast_s = 0.0;
    for (auto _ : state) {
        sheet.Clear();
        PREPARED_SCENE prepared(sheet.scene.scene);
        TRIANGLE_FILLER filler(prepared, 0);
        RADAR_ROW rows[] = {RADAR_ROW(sheet.scene.scene.simulated), RADAR_ROW(sheet.scene.scene.simulated)};
        sheet.Fill(rows[0], 0);
        const std::vector<unsigned char> cells(rows[0].size, 1);
        double run_s = 0.0;
        for (int r = 0; r < SHEET::kCells; ++r) {
            sheet.Fill(rows[(r + 1) % 2], r + 1);
            run_s += SecondsOf([&] { filler.FillRow(rows[r % 2], rows[(r + 1) % 2], cells); });
        }
        run_s += SecondsOf([&] { filler.WriteMask(); });
        state.SetIterationTime(run_s);
        fast_s += run_s;
    }
    const double runs = static_cast<double>(state.iterations());
    state.counters["cells/s"] = SHEET::kCells * SHEET::kCells * runs / fast_s;
    state.counters["pixels/s"] = sheet.scene.MaskCount() * runs / fast_s;
    state.counters["plain"] = plain_s / (fast_s / runs);
}

#define VELMORA_ZERO_DOPPLER(name, text) \
    BENCHMARK_CAPTURE(ZeroDoppler, name, text)->Repetitions(kRepetitions)->ReportAggregatesOnly(true)
VELMORA_ZERO_DOPPLER(polynom, "polynom");
VELMORA_ZERO_DOPPLER(polyfit, "polyfit_7");
VELMORA_ZERO_DOPPLER(spline, "spline");
VELMORA_ZERO_DOPPLER(localpolynom, "localpolynom_0_8");
VELMORA_ZERO_DOPPLER(localpolyfit, "localpolyfit_5_9");
VELMORA_ZERO_DOPPLER(chebyshev, "chebyshev_7");
VELMORA_ZERO_DOPPLER(localchebyshev, "localchebyshev_5_8");
VELMORA_ZERO_DOPPLER(hermite, "hermite_0_8");
VELMORA_ZERO_DOPPLER(localhermite, "localhermite_0_5");
VELMORA_ZERO_DOPPLER(everett, "everett_8");
BENCHMARK(Rasteriser)
    ->Arg(1)
    ->Arg(2)
    ->Arg(7)
    ->Iterations(10)
    ->UseManualTime()
    ->Repetitions(kRepetitions)
    ->ReportAggregatesOnly(true);

}  // namespace
