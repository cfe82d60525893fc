#include "import/commands/run_options.h"

namespace {

constexpr int kMostFactor = 10000;

}  // namespace

void AddRunOptions(COMPANION_COMMAND& command, RUN_REQUEST& request, const RUN_OPTIONS_HELP& help) {
    command.Add("DEM", request.dem_pool, "NAME.pool of the terrain model, with NAME.ras beside it").Required();
    command.Add("-o,--output", request.folder, help.folder).Required();
    command.Add("--lines", request.lines, help.lines);
    command.Add("--samples", request.samples, help.samples);
    command.Add("--shift-factors", request.shift_factors, "RANGE AZIMUTH: subsampling of the shift maps")
        .Takes(2)
        .Between(1, kMostFactor);
    command.Add("--earth-factors", request.earth_factors, "X Y: subsampling of Earth coordinates and height")
        .Takes(2)
        .Between(1, kMostFactor);
    command.Add("--interpolation", request.interpolation, help.interpolation);
}
