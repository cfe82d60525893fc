#include "import/commands/run_options.h"

namespace {

constexpr int kMostFactor = 10000;

}  // namespace

void AddRunOptions(COMPANION_COMMAND& command, RUN_OPTIONS& options, const RUN_OPTIONS_HELP& help) {
    command.Add("DEM", options.dem_pool, "NAME.pool of the terrain model, with NAME.ras beside it").Required();
    command.Add("-o,--output", options.folder, help.folder).Required();
    command.Add("--lines", options.lines, help.lines);
    command.Add("--samples", options.samples, help.samples);
    command.Add("--shift-factors", options.shift_factors, "RANGE AZIMUTH: subsampling of the shift maps")
        .Takes(2)
        .Between(1, kMostFactor);
    command.Add("--earth-factors", options.earth_factors, "X Y: subsampling of Earth coordinates and height")
        .Takes(2)
        .Between(1, kMostFactor);
    command.Add("--interpolation", options.interpolation, help.interpolation);
}
