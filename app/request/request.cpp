#include "app/request/request.h"

#include <filesystem>

#include "app/keys/mistyped_pool_keys.h"
#include "app/keys/pool_values.h"
#include "app/request/product_groups.h"
#include "app/request/request_summary.h"
#include "app/request/subsampling_factors.h"
#include "app/say.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/parse_number.h"
#include "lib/baselib/logging/logging.h"

namespace {

PHASE_REQUEST ReadPhaseKeys(CONTROLLER_IFC& controller) {
    const std::optional<SOURCED_TEXT> file = ReadProduct(controller, "SIMU_PHASE");
    if (!file) return {};
    return {*file, OptionalText(controller, "IFGRM_INVALID").value_or(SOURCED_TEXT{})};
}

INPUT_FILES ReadPoolPaths(CONTROLLER_IFC& controller) {
    // An initialiser list is evaluated from left to right: the keys are looked up in this order.
    return {RequiredText(controller, "MASTER_POOL"), RequiredText(controller, "SLAVE_POOL"),
            RequiredText(controller, "INSAR_POOL"), RequiredText(controller, "log_pp")};
}

void OpenPools(RUN_POOLS& pools, const INPUT_FILES& files) {
    const bool log_pool_is_missing = pools.only_looks && !std::filesystem::exists(files.log_pool.text);
    if (files.log_pool.text != files.insar_pool.text && !log_pool_is_missing)
        pools.own_log = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(files.log_pool.text);
    pools.master.Open(files.master_pool.text);
    pools.slave.Open(files.slave_pool.text);
    pools.insar.Open(files.insar_pool.text);
}

TERRAIN_REQUEST ReadTerrainKeys(CONTROLLER_IFC& controller) {
    return {RequiredText(controller, "DEM_POOL"), RequiredText(controller, "DEM"),
            OptionalText(controller, "DEM_VALID").value_or(SOURCED_TEXT{}),
            RequiredText(controller, "RANGE_TIME_SHIFT")};
}

SOURCED_TEXT ReadObservationMode(CONTROLLER_IFC& controller, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    constexpr POOL_KEY<STRING> kPoolKey = "observation_mode";
    constexpr CONTROL_KEY kForcingKey = "OBSERVATION_MODE";
    if (!IsGiven(controller, kForcingKey))
        return {SourceOf(insar_pool, kPoolKey), Read<STRING>(insar_pool, kPoolKey).ToStd(), &kPoolKey.row.range};
    Log().Message(LOGGING_LEVEL::WARNING, " - Observation mode forced by PCF -> Read value from PCF, not from pool ");
    const SOURCED_TEXT mode = RequiredText(controller, kForcingKey);
    insar_pool.Change(kPoolKey.row.name, STRING(mode.text));
    return mode;
}

bool ReadParameterMode(CONTROLLER_IFC& controller) {
    const bool permanent_scatterer = IsGiven(controller, "PS_INSAR_MODE");
    Say("%s", permanent_scatterer ? " - Parameter mode: permanent scatterer" : " - Parameter mode: std. InSAR");
    return permanent_scatterer;
}

SHIFT_REQUEST ReadShiftKeys(CONTROLLER_IFC& controller) {
    SHIFT_REQUEST shifts;
    const std::vector<SOURCED_TEXT> files = ReadProductGroup(controller, {"RG_COREG", "AZ_COREG"});
    if (!files.empty()) shifts = {.asked = true, .range_file = files[0], .azimuth_file = files[1]};
    shifts.relative = IsGiven(controller, "WRITE_SHIFTS");
    Say("%s", shifts.relative ? " - Mapping matrices represent relative shifts"
                              : " - Mapping matrices represent absolute positions");
    return shifts;
}

EARTH_REQUEST ReadEarthKeys(CONTROLLER_IFC& controller) {
    EARTH_REQUEST earth;
    const std::vector<SOURCED_TEXT> files = ReadProductGroup(controller, {"X_EARTH", "Y_EARTH", "Z_EARTH"});
    if (!files.empty()) earth = {.x_file = files[0], .y_file = files[1], .z_file = files[2]};
    earth.height_file = ReadProduct(controller, "H_EARTH").value_or(SOURCED_TEXT{});
    return earth;
}

VIEW_REQUEST ReadViewKeys(CONTROLLER_IFC& controller) {
    const auto read = [&](CONTROL_KEY key) { return ReadProduct(controller, key).value_or(SOURCED_TEXT{}); };
    return {read("INCIDENCE"), read("LOCAL_INCIDENCE"), LineOfSightFiles(read("LINE_OF_SIGHT")),
            read("PERPENDICULAR_BASELINE"), read("HEIGHT_OF_AMBIGUITY")};
}

std::optional<int> ReadMemoryLimit(CONTROLLER_IFC& controller) {
    constexpr CONTROL_KEY kKey = "MEMORY_LIMIT";
    const std::optional<SOURCED_TEXT> limit = OptionalText(controller, kKey);
    if (!limit) return std::nullopt;
    long long mib = 0;
    if (ParseInteger(limit->text, mib) != PARSE_RESULT::OK || mib != static_cast<int>(mib))
        RefuseValue(limit->source, "\"" + limit->text + "\"", "is no 32-bit integer");
    RequireInRange(limit->source, static_cast<int>(mib), kKey.row.range);
    return static_cast<int>(mib);
}

/// What is forced takes effect in the InSAR pool at once, before anything else reads it.
REQUEST ReadKeys(CONTROLLER_IFC& controller, RUN_POOLS& pools) {
    REQUEST request;
    request.controller_files = controller.Files();
    request.phase = ReadPhaseKeys(controller);
    request.pools = ReadPoolPaths(controller);
    OpenPools(pools, request.pools);
    request.terrain = ReadTerrainKeys(controller);
    request.observation_mode = ReadObservationMode(controller, pools.insar);
    request.looks_range = RequiredText(controller, "LOOKS_RG");
    request.looks_azimuth = RequiredText(controller, "LOOKS_AZ");
    request.permanent_scatterer = ReadParameterMode(controller);
    request.shifts = ReadShiftKeys(controller);
    request.factors.shift = ReadShiftSubsampling(request.shifts.asked, controller, pools.insar);
    request.earth = ReadEarthKeys(controller);
    request.factors.earth = ReadEarthSubsampling(controller, pools.insar);
    request.factors.geocoding = ReadGeocodingSubsampling(pools.insar);
    request.extension = ExtensionOf(request.factors);
    request.views = ReadViewKeys(controller);
    request.layover_shadow_file = ReadProduct(controller, "LAYOVER_SHADOW").value_or(SOURCED_TEXT{});
    request.memory_limit_mib = ReadMemoryLimit(controller);
    request.sidecars = IsGiven(controller, "VRT_SIDECARS");
    request.report = OptionalText(controller, "REPORT").value_or(SOURCED_TEXT{});
    return request;
}

std::vector<SOURCED_TEXT> GivenOnes(std::initializer_list<SOURCED_TEXT> files) {
    std::vector<SOURCED_TEXT> given;
    for (const SOURCED_TEXT& file : files)
        if (file.Given()) given.push_back(file);
    return given;
}

}  // namespace

std::vector<SOURCED_TEXT> REQUEST::ViewFiles() const {
    const LINE_OF_SIGHT_FILES& sight = views.line_of_sight;
    return GivenOnes({views.incidence_file, views.local_incidence_file, sight[0], sight[1], sight[2],
                      views.baseline_file, views.ambiguity_file});
}

std::vector<SOURCED_TEXT> REQUEST::ProductFiles() const {
    std::vector<SOURCED_TEXT> files = GivenOnes({phase.file, shifts.range_file, shifts.azimuth_file, earth.x_file,
                                                 earth.y_file, earth.z_file, earth.height_file});
    for (const SOURCED_TEXT& file : ViewFiles()) files.push_back(file);
    if (WantsLayoverShadow()) files.push_back(layover_shadow_file);
    return files;
}

std::vector<SOURCED_TEXT> REQUEST::OtherFiles() const {
    return GivenOnes({pools.master_pool, pools.slave_pool, pools.insar_pool, pools.log_pool, terrain.dem_pool,
                      terrain.dem_file, report});
}

REQUEST ReadRequest(CONTROLLER_IFC& controller, RUN_POOLS& pools) {
    Log().Message(LOGGING_LEVEL::TRACE, "reading configuration ..");
    REQUEST request = ReadKeys(controller, pools);
    LogRequestSummary(request);
    controller.ReportUnusedWords();
    WarnAboutMistypedKeys(pools.insar, kInsarPool);
    return request;
}
