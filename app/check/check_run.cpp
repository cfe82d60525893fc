#include "app/check/check_run.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "app/check/pool_sweep.h"
#include "app/check/problem_list.h"
#include "app/check/scene_figures.h"
#include "app/keys/control_key.h"
#include "app/products/pool_write_back.h"
#include "app/products/software_history.h"
#include "app/request/run_files.h"
#include "app/velmora_version.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/image/output_path.h"
#include "lib/baselib/logging/logging.h"

namespace {

bool IsFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string ValueOf(CONTROLLER_IFC& controller, const char* key) {
    std::string value;
    controller.get_optional_parameter(key, value);
    return value;
}

/// Opening a pool that is not there would create it.
bool PoolIsThere(CONTROLLER_IFC& controller, const char* key, PROBLEM_LIST& problems) {
    const std::string path = ValueOf(controller, key);
    if (path.empty() || IsFile(path)) return !path.empty();
    problems.Add("configuration: key \"" + std::string(key) + "\": there is no file " + path);
    return false;
}

/// Keys that the run would ask the keyboard for.
bool AllKeysAreGiven(CONTROLLER_IFC& controller, PROBLEM_LIST& problems) {
    bool complete = true;
    const auto require = [&](const char* key) {
        if (controller.parameter_exists(key)) return;
        problems.Add("configuration: key \"" + std::string(key) + "\" is missing");
        complete = false;
    };
    const auto require_together = [&](std::initializer_list<const char*> keys) {
        if (std::ranges::any_of(keys, [&](const char* key) { return controller.parameter_exists(key); }))
            std::ranges::for_each(keys, require);
    };
    for (const CONTROL_KEY_ROW& row : kControlKeys)
        if (row.need == KEY_NEED::MANDATORY) require(row.name);
    require_together({"RG_COREG", "AZ_COREG"});
    require_together({"X_EARTH", "Y_EARTH", "Z_EARTH"});
    require_together({"SHIFT_MATRICES_SUBSAMPLING_RG", "SHIFT_MATRICES_SUBSAMPLING_AZ"});
    return complete;
}

void SweepPools(CONTROLLER_IFC& controller, PROBLEM_LIST& problems) {
    struct HOME {
        const char* key;
        POOL_HOME home;
    };
    std::string mode = ValueOf(controller, "OBSERVATION_MODE");
    const std::string pair_pool = ValueOf(controller, "INSAR_POOL");
    if (mode.empty() && IsFile(pair_pool))
        problems.Try([&] { mode = PARAMETER_POOL(pair_pool).Get<STRING>("observation_mode").ToStd(); });
    const RUN_KIND kind{controller.parameter_exists("PS_INSAR_MODE"), mode == "single_pass"};
    for (const HOME& home : {HOME{"MASTER_POOL", kMasterPool}, HOME{"SLAVE_POOL", kSlavePool},
                             HOME{"INSAR_POOL", kInsarPool}, HOME{"DEM_POOL", kDemPool}}) {
        const std::string path = ValueOf(controller, home.key);
        if (!IsFile(path)) continue;
        problems.Try([&] {
            PARAMETER_POOL pool(path);
            SweepPool(pool, home.home, kind, problems);
        });
    }
}

/// Whether the run could create or replace it, as far as permissions tell.
void LookAtProduct(const SOURCED_TEXT& product, PROBLEM_LIST& problems) {
    const std::string& path = product.text;
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    struct stat status {};
    if (path.back() == '/' || (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)))
        problems.Add("configuration: key \"" + product.source.key + "\": the product " + path + " is a folder");
    else if (access(path.c_str(), W_OK) != 0 && access(folder.c_str(), W_OK | X_OK) != 0)
        problems.Add("configuration: key \"" + product.source.key + "\": the product " + path +
                     " can not be written: " + std::strerror(errno));
}

/// One that is not there would be created.
void LookAtLogPool(const SOURCED_TEXT& log_pool, PROBLEM_LIST& problems) {
    const FOLDER_AND_NAME place(log_pool.text);
    struct stat status {};
    if (stat(log_pool.Text(), &status) == 0 || access(place.FolderPath(), W_OK | X_OK) == 0) return;
    problems.Add("configuration: key \"" + log_pool.source.key + "\": the pool " + log_pool.text +
                 " can not be created: " + std::strerror(errno));
}

/// What does not depend on the other inputs.
/// @param files_differ  what is known of the files before the pools are read
void TryPartsAlone(const REQUEST& request, RUN_POOLS& pools, bool files_differ, PROBLEM_LIST& problems) {
    if (pools.own_log != nullptr || request.pools.log_pool.text == request.pools.insar_pool.text)
        problems.Try([&] {
            TryHistory(pools.HistoryPool(),
                       EntryOfRun(VelmoraVersion("velmora"), Log().OpeningTime(), std::time(nullptr)));
        });
    LookAtLogPool(request.pools.log_pool, problems);
    problems.Try([&] {
        const ACQUISITIONS acquisitions = ReadAcquisitions(request, pools);
        if (files_differ) CheckFilesOfRun(request, acquisitions);
    });
    problems.Try([&] {
        PARAMETER_POOL dem_pool = OpenDemPool(request);
        static_cast<void>(ReadTerrain(request, dem_pool));
    });
    problems.Try([&] { static_cast<void>(ReadValidHeights(request.terrain.valid_heights)); });
    problems.Try([&] { static_cast<void>(ReadInitialPhase(request)); });
    for (const SOURCED_TEXT& product : request.ProductFiles()) LookAtProduct(product, problems);
}

void PrintSize(const char* name, long long bytes) {
    std::printf("  %-24s %.1f MB\n", name, static_cast<double>(bytes) / 1e6);
}

void PrintFigures(const SIMULATION_STATE& state) {
    const IMAGE_SIZE& image = state.acquisitions.image;
    const DEM_RANGE& used = state.place.simulated;
    const DEM_GRID& dem = state.terrain.grid;
    const CENTRE_FIGURES centre = FiguresAtCentre(state);
    std::printf("  %-24s %d x %d pixels, simulated area %d x %d\n", "master image", image.samples, image.lines,
                state.simulated.samples, state.simulated.lines);
    std::printf("  %-24s columns %d..%d of %d, rows %d..%d of %d\n", "place in the DEM", used.first_column,
                used.last_column, dem.columns, used.first_row, used.last_row, dem.rows);
    std::printf("  %-24s %.1f .. %.1f m, %lld samples without a valid height\n", "heights there", state.survey.lowest_m,
                state.survey.highest_m, state.survey.excluded);
    std::printf("  %-24s %.5f N, %.5f E, at %.0f m\n", "centre of the scene", centre.latitude_deg, centre.longitude_deg,
                centre.height_m);
    std::printf("  %-24s %.2f m\n", "perpendicular baseline", centre.perpendicular_baseline_m);
    std::printf("  %-24s %.2f m\n", "height of ambiguity", centre.height_of_ambiguity_m);
    PrintSize("memory for grids and DEM", MemoryNeeded_bytes(state));
    PrintSize("disk for products", DiskNeeded_bytes(state));
    if (!state.slabs.exceeds_limit)
        std::printf("  %-24s about %.2g s\n", "simulation", ExpectedSimulationTime_s(state));
    else
        std::printf("  %-24s in %d slabs, time not estimated\n", "simulation", state.slabs.count);
}

/// @return whether stage A would go well
bool TryAll(CONTROLLER_IFC& controller, PROBLEM_LIST& problems) {
    const std::vector<std::string> shared_files = CheckFilesOfParameters(controller).lines;
    std::ranges::for_each(shared_files, [&](const std::string& line) { problems.Add(line); });
    bool ready = AllKeysAreGiven(controller, problems);
    for (const char* key : {"MASTER_POOL", "SLAVE_POOL", "INSAR_POOL", "DEM_POOL"})
        ready = PoolIsThere(controller, key, problems) && ready;
    SweepPools(controller, problems);
    if (!ready) return false;
    RUN_POOLS pools;
    pools.only_looks = true;
    REQUEST request;
    if (!problems.Try([&] { request = ReadRequest(controller, pools); })) return false;
    request.only_looks = true;
    TryPartsAlone(request, pools, shared_files.empty(), problems);
    if (!problems.Problems().empty()) return false;
    return problems.Try([&] { PrintFigures(SIMULATION_STATE(request, pools)); });
}

}  // namespace

bool TakeCheckRequest(int& argc, char** argv) {
    char** const end = argv + argc;
    char** const kept = std::remove_if(argv + std::min(argc, 1), end,
                                       [](const char* argument) { return std::strcmp(argument, "--check") == 0; });
    const bool asked = kept != end;
    argc = static_cast<int>(kept - argv);
    argv[argc] = nullptr;
    return asked;
}

void CheckRun(int argc, char** argv) {
    constexpr int kSilent = 10;
    Log().SetScreenThreshold(kSilent);
    Log().SetFileThreshold(kSilent);
    CONTROLLER_IFC controller;
    controller.SetKnownKeys(ControlKeyNames());
    controller.init_to_look(argc, argv);
    std::printf("check of %s\n", controller.get_configuration_file_name().c_str());
    PROBLEM_LIST problems;
    const bool good = TryAll(controller, problems);
    for (const std::string& problem : problems.Problems()) std::printf("  problem: %s\n", problem.c_str());
    for (const std::string& warning : Log().Tally().FirstWarnings()) std::printf("  warning: %s\n", warning.c_str());
    std::printf("%s; nothing was written\n", good ? "stage A would go well" : "stage A would fail");
    std::exit(std::fflush(stdout) == 0 && good ? 0 : 1);
}
