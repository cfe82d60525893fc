#include "app/request/configuration_summary.h"

#include "app/keys/refusal.h"
#include "lib/baselib/logging/logging.h"

namespace {

void Line(const char* format, const std::string& value) __attribute__((format(printf, 1, 0)));

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // the formats are the literals below
void Line(const char* format, const std::string& value) {
    Log().Message(LOGGING_LEVEL::INFO, format, value.c_str());
}
#pragma GCC diagnostic pop

void LogSubsampling(const SUBSAMPLING& factors) {
    Log().Message(LOGGING_LEVEL::INFO, "      - subsampling in x: .... %d", factors.x);
    Log().Message(LOGGING_LEVEL::INFO, "      - subsampling in y: .... %d", factors.y);
}

void LogProducts(const RUN_CONFIGURATION& configuration) {
    if (configuration.WantsShifts()) {
        Log().Message(LOGGING_LEVEL::INFO, "   j. coregistration requested");
        Line("      - rg position img: ..... %s", configuration.range_shift_file);
        Line("      - az position img: ..... %s", configuration.azimuth_shift_file);
        LogSubsampling(configuration.shift);
    }
    if (configuration.WantsEarth()) {
        Log().Message(LOGGING_LEVEL::INFO, "   k. earth location {xyz} requested");
        Line("      - x earth img: ......... %s", configuration.x_earth_file);
        Line("      - y earth img: ......... %s", configuration.y_earth_file);
        Line("      - z earth img: ......... %s", configuration.z_earth_file);
        LogSubsampling(configuration.earth);
    }
    if (configuration.WantsHeight()) {
        Log().Message(LOGGING_LEVEL::INFO, "   l. earth topography requested");
        Line("      - h earth img: ......... %s", configuration.height_file);
        LogSubsampling(configuration.earth);
    }
}

}  // namespace

void LogConfigurationSummary(const RUN_CONFIGURATION& configuration) {
    Log().Message(LOGGING_LEVEL::INFO, " ");
    Log().Message(LOGGING_LEVEL::INFO, " - Program configuration:");
    Line("   a. master pool: ........... %s", configuration.master_pool);
    Line("   b. slave pool: ............ %s", configuration.slave_pool);
    Line("   c. insar pool: ............ %s", configuration.insar_pool);
    Line("   d. log pool: .............. %s", configuration.log_pool);
    Line("   e. dem pool: .............. %s", configuration.dem_pool);
    Line("   f. range time shift: ...... %s", configuration.range_time_shift);
    RequireText(configuration.observation_mode);  // an empty text ends the run here
    Line("   g. observation mode: ...... %s", configuration.observation_mode);
    Line("   h. looks range: ........... %s", configuration.looks_range);
    Line("   i. looks azimuth: ......... %s", configuration.looks_azimuth);
    LogProducts(configuration);
    if (configuration.area_extended) {
        Log().Message(LOGGING_LEVEL::INFO, "   m. extended simulation area");
        Log().Message(LOGGING_LEVEL::INFO, "      - extension in x: ...... %d", configuration.extension_x);
        Log().Message(LOGGING_LEVEL::INFO, "      - extension in y: ...... %d", configuration.extension_y);
    }
    if (configuration.WantsPhase() && !configuration.invalid_phase.empty())
        Line("   * Invalid ifgrm value: .... %s ", configuration.invalid_phase);
    if (!configuration.dem_valid.empty()) Line("   * Valid dem value range: .. %s ", configuration.dem_valid);
    Log().Message(LOGGING_LEVEL::INFO, " ");
}
