#include <memory>

#include "companions/input_file.h"
#include "companions/results.h"
#include "import/commands/commands.h"
#include "import/commands/run_options.h"
#include "import/pair/pair_folder.h"
#include "import/pair/pair_inputs.h"

namespace {

struct PAIR_OPTIONS : RUN_REQUEST {
    std::string master;
    std::string slave;
    bool force = false;
};

constexpr const char* kPairExample =
    "  velmora-import pair master.pool slave.pool dem.pool -o run --lines 240:660 --samples 21480:22980 \\\n"
    "      --shift-factors 4 2 --earth-factors 3 3\n";

/// @return how the user is told; the value goes into interpolation
std::string Choose(const std::string& pool, const std::string& wanted, std::string& interpolation) {
    if (!wanted.empty()) {
        interpolation = wanted;
        return wanted + ", as asked for";
    }
    const auto choice = InterpolationForPool(pool);
    if (!choice) return "as in the pool: its orbit stands in a record database";
    interpolation = choice->text;
    return choice->text + " (" + choice->reason + ")";
}

void PrintPart(const PAIR_SETUP& setup, const SLAVE_LINES& seen) {
    const IMAGE_PART& part = setup.part;
    PrintResult("  master image . lines %lld:%lld of %lld, samples %lld:%lld of %lld\n", part.lines.first,
                part.lines.end, setup.master.lines, part.samples.first, part.samples.end, setup.master.samples);
    PrintResult("  slave image .. passes this ground on its lines %.0f to %.0f\n", seen.first, seen.last);
    const double last_line = static_cast<double>(setup.slave.lines - 1);
    if (seen.last < 0.0 || seen.first > last_line)
        PrintResult("  note ......... the slave's image of %lld lines does not show this ground; its orbit does\n",
                    setup.slave.lines);
}

void Run(const PAIR_OPTIONS& options) {
    OUTPUT_SET outputs(options.force);
    PAIR_SETUP setup;
    setup.dem_pool = options.dem_pool;
    RequireRegularFile(setup.dem_pool);
    setup.dem_raster = DemRasterBeside(setup.dem_pool);
    for (const std::string& input : {options.master, options.slave, setup.dem_pool, setup.dem_raster})
        outputs.Protect(input);
    setup.master = ReadAcquisition(options.master);
    setup.slave = ReadAcquisition(options.slave);
    RequireOneKind(setup.master, setup.slave);
    const double side = LookDirection(setup.master, options.slave);
    setup.look_direction = side > 0.0 ? "right" : "left";
    setup.part = {ParseRange("--lines", options.lines, setup.master.lines),
                  ParseRange("--samples", options.samples, setup.master.samples)};
    setup.shift_factors = {options.shift_factors[0], options.shift_factors[1]};
    setup.earth_factors = {options.earth_factors[0], options.earth_factors[1]};
    const std::string master_orbit = Choose(options.master, options.interpolation, setup.master_interpolation);
    const std::string slave_orbit = Choose(options.slave, options.interpolation, setup.slave_interpolation);
    const SLAVE_LINES seen = LinesSeenBySlave(setup.master, setup.slave, side, setup.part);
    WritePairFolder(outputs, options.folder, setup);
    outputs.Commit();
    PrintResult("%s: scene.pcf, master.pool, slave.pool, insar.pool, log.pool\n", options.folder.c_str());
    PrintPart(setup, seen);
    PrintResult("  master orbit . %s\n", master_orbit.c_str());
    PrintResult("  slave orbit .. %s\n", slave_orbit.c_str());
    PrintResult("To run it:\n  cd %s && velmora -pcf scene.pcf\n", options.folder.c_str());
}

}  // namespace

void AddPairCommand(COMPANION_PROGRAM& program) {
    const auto options = std::make_shared<PAIR_OPTIONS>();
    COMPANION_COMMAND command = program.AddCommand("pair", "Make the folder of a run from two acquisitions and a DEM",
                                                   kPairExample, [options] { Run(*options); });
    command.Add("MASTER", options->master, "pool of the master, as sentinel1 makes it").Required();
    command.Add("SLAVE", options->slave, "pool of the slave").Required();
    AddRunOptions(command, *options,
                  {"folder to be filled", "A:B, the master's lines from A up to B (not included), from 0",
                   "C:D, the master's samples, in the same way", "orbit interpolation in place of the one chosen"});
    command.AddFlag("--force", options->force, "replace existing files of the folder");
}
