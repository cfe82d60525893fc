#include <filesystem>
#include <memory>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "companions/output_set.h"
#include "companions/results.h"
#include "import/commands/commands.h"
#include "import/orbit_files/orbit_file.h"
#include "import/orbit_files/orbit_selection.h"
#include "import/orbit_files/time_scales.h"
#include "import/pools/orbit_entries.h"

namespace {

struct ORBIT_OPTIONS {
    std::string file;
    std::string from;
    std::string to;
    std::string pool;
    bool force = false;
};

constexpr const char* kOrbitExample =
    "  velmora-import orbit S1A_OPER_AUX_POEORB_....EOF --from 2023-01-08T13:52:51 --to 2023-01-08T13:53:17 \\\n"
    "      --into master.pool\n";

/// All times of a pool count from its reference time: one that is there stays.
UNIVERSAL_TIME ReferenceTimeOf(PARAMETER_POOL& pool, const std::string& name,
                               const std::vector<UTC_STATE_VECTOR>& vectors) {
    constexpr const char* kKey = "orbit_reference_time";
    if (!pool.FindKey(kKey)) return ReferenceTimeFor(vectors);
    const VALUE_PLACE place{name, std::string("key ") + kKey};
    return UtcOf(place, pool.Get<STRING>(kKey).ToStd());
}

void WriteInto(const std::string& temporary, const ORBIT_OPTIONS& options, const ORBIT_TABLE& table,
               const std::vector<UTC_STATE_VECTOR>& vectors) {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(temporary);
    if (pool.FindKey("orbit_representation") && !options.force)
        throw COMPANION_ERROR(options.pool + ": has an orbit already (key orbit_representation); --force replaces it");
    const UNIVERSAL_TIME reference = ReferenceTimeOf(pool, options.pool, vectors);
    ChangeOrbitEntries(pool, vectors, reference, " state vectors: " + table.kind);
    pool.Update();
}

void Run(const ORBIT_OPTIONS& options) {
    const UTC_INTERVAL interval{UtcOf({"command line", "--from"}, options.from),
                                UtcOf({"command line", "--to"}, options.to)};
    if (interval.to < interval.from) RefuseValue({"command line", "--to"}, options.to, "no earlier time than --from");
    const bool is_there = std::filesystem::exists(options.pool);
    OUTPUT_SET outputs(is_there);  // entries are added to a pool that has none, so its file is replaced
    outputs.Protect(options.file);
    const ORBIT_TABLE table = ReadOrbitFile(options.file);
    const std::vector<UTC_STATE_VECTOR> vectors = SelectVectors(table, interval);
    const std::string temporary = outputs.Add(options.pool);
    if (is_there) {
        RequireRegularFile(options.pool);
        std::filesystem::copy_file(options.pool, temporary, std::filesystem::copy_options::overwrite_existing);
    }
    WriteInto(temporary, options, table, vectors);
    outputs.Commit();
    PrintResult("%s: %zu vectors of %s, %s\n", options.pool.c_str(), vectors.size(), table.kind.c_str(),
                IntervalText(vectors.front().time, vectors.back().time).c_str());
    PrintResult("  interpolation  %s\n", InterpolationText(vectors).c_str());
}

}  // namespace

void AddOrbitCommand(COMPANION_PROGRAM& program) {
    const auto options = std::make_shared<ORBIT_OPTIONS>();
    COMPANION_COMMAND command = program.AddCommand("orbit", "Put the state vectors of an orbit file into a pool",
                                                   kOrbitExample, [options] { Run(*options); });
    command.Add("FILE", options->file, "Sentinel-1 EOF, CCSDS OEM (KVN) or CSV").Required();
    command.Add("--from", options->from, "first line of the image, UTC").Required();
    command.Add("--to", options->to, "last line of the image, UTC").Required();
    command.Add("--into", options->pool, "pool that receives the orbit; made when it is not there").Required();
    command.AddFlag("--force", options->force, "replace the orbit that the pool has");
}
