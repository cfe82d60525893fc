#include <memory>
#include <optional>

#include "companions/output_set.h"
#include "companions/results.h"
#include "import/commands/commands.h"
#include "import/pools/acquisition_pool.h"
#include "import/pools/orbit_entries.h"
#include "import/sentinel1/acquisition_files.h"

namespace {

struct SENTINEL1_OPTIONS {
    std::string annotation;
    std::string orbit;
    std::string output;
    std::optional<int> burst;
    bool force = false;
};

constexpr const char* kSentinel1Example =
    "  velmora-import sentinel1 s1a-iw2-slc-vv-20230108t135251-....xml --orbit S1A_OPER_AUX_POEORB_....EOF \\\n"
    "      -o master.pool\n";

void PrintSummary(const SENTINEL1_OPTIONS& options, const S1_ANNOTATION& image, const IMAGE_GRID& grid,
                  const ORBIT_TABLE& orbit, const std::vector<UTC_STATE_VECTOR>& vectors) {
    PrintResult("%s: %s %s %s, %s orbit %lld, ", options.output.c_str(), image.mission.c_str(), image.swath.c_str(),
                image.polarisation.c_str(), image.pass.c_str(), image.absolute_orbit);
    if (options.burst) {
        PrintResult("burst %d of %zu\n", *options.burst, image.bursts.size());
    } else if (image.bursts.empty()) {
        PrintResult("stripmap\n");
    } else {
        PrintResult("%zu bursts as one image\n", image.bursts.size());
    }
    PrintResult("  lines ........ %lld, %s, every %.16g s (%.6f Hz)\n", grid.lines,
                IntervalText(grid.first_line, grid.last_line).c_str(), image.line_interval_s,
                1.0 / image.line_interval_s);
    PrintResult("  samples ...... %lld, from %.16g s two-way at %.16g Hz\n", grid.samples, image.first_range_time_s,
                image.range_sampling_rate_hz);
    PrintResult("  valid ........ lines %lld to %lld, samples %lld to %lld\n", grid.valid_lines.first,
                grid.valid_lines.last, grid.valid_samples.first, grid.valid_samples.last);
    if (!options.burst && !image.bursts.empty())
        PrintResult("  bursts ....... first lines at most %.3f lines off the grid\n", grid.largest_burst_offset);
    PrintResult("  radar ........ %.16g Hz, azimuth bandwidth %g Hz, looking right\n", image.radar_frequency_hz,
                image.azimuth_bandwidth_hz);
    PrintResult("  orbit ........ %zu vectors of %s, %s\n", vectors.size(), orbit.kind.c_str(),
                IntervalText(vectors.front().time, vectors.back().time).c_str());
    PrintResult("  interpolation  %s\n", InterpolationText(vectors).c_str());
}

void Run(const SENTINEL1_OPTIONS& options) {
    OUTPUT_SET outputs(options.force);
    outputs.Protect(options.annotation);
    if (!options.orbit.empty()) outputs.Protect(options.orbit);
    const S1_ACQUISITION read = ReadSentinel1(options.annotation, options.orbit, options.burst);
    WriteAcquisitionPool(outputs.Add(options.output), read.image, read.grid, read.orbit, read.vectors);
    outputs.Commit();
    PrintSummary(options, read.image, read.grid, read.orbit, read.vectors);
}

}  // namespace

void AddSentinel1Command(COMPANION_PROGRAM& program) {
    const auto options = std::make_shared<SENTINEL1_OPTIONS>();
    COMPANION_COMMAND command =
        program.AddCommand("sentinel1", "Make an acquisition's pool from a Sentinel-1 annotation file",
                           kSentinel1Example, [options] { Run(*options); });
    command.Add("ANNOTATION", options->annotation, "annotation file of one swath and polarisation (XML)").Required();
    command.Add("--orbit", options->orbit, "orbit file (EOF, OEM or CSV) that replaces the annotation's state vectors");
    command.Add("--burst", options->burst, "one burst, counted from 1, instead of the whole swath");
    command.Add("-o,--output", options->output, "pool to write").Required();
    command.AddFlag("--force", options->force, "replace an existing output");
}
