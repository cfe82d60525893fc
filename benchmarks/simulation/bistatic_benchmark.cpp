/// \file bistatic_benchmark.cpp
/// What the single-pass solution costs: the phase kernel on one scene, monostatic and single-pass, in one run and in
/// one thread. Items are DEM cells; argument 0 is the mode.

#include <benchmark/benchmark.h>

#include "lib/baselib/logging/logging.h"
#include "tests/simulation/test_scene.h"

namespace {

void StageB(benchmark::State& state) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    setenv("PARALLEL", "1", 1);
    TEST_SCENE scene({.image_rows = 600, .image_columns = 700, .dem_size = 300});
    scene.scene.bistatic = state.range(0) != 0;
    state.SetLabel(scene.scene.bistatic ? "single-pass" : "monostatic");
    for (auto _ : state) {
        scene.mask.Fill(0);
        scene.Run();
    }
    state.SetItemsProcessed(state.iterations() * scene.request.dem_size * scene.request.dem_size);
}

BENCHMARK(StageB)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
