#include "app/request/request_summary.h"

#include "app/say.h"

namespace {

void SaySubsampling(const SUBSAMPLING& factors) {
    Say("      - subsampling in x: .... %d", factors.x);
    Say("      - subsampling in y: .... %d", factors.y);
}

void SayProducts(const REQUEST& request) {
    if (request.WantsShifts()) {
        Say("   j. coregistration requested");
        Say("      - rg position img: ..... %s", request.shifts.range_file.Text());
        Say("      - az position img: ..... %s", request.shifts.azimuth_file.Text());
        SaySubsampling(request.factors.shift);
    }
    if (request.WantsEarth()) {
        Say("   k. earth location {xyz} requested");
        Say("      - x earth img: ......... %s", request.earth.x_file.Text());
        Say("      - y earth img: ......... %s", request.earth.y_file.Text());
        Say("      - z earth img: ......... %s", request.earth.z_file.Text());
        SaySubsampling(request.factors.earth);
    }
    if (request.WantsHeight()) {
        Say("   l. earth topography requested");
        Say("      - h earth img: ......... %s", request.earth.height_file.Text());
        SaySubsampling(request.factors.earth);
    }
    if (request.WantsViews()) {
        Say("   n. views of the satellites requested");
        for (const SOURCED_TEXT& file : request.ViewFiles())
            Say("      - %s: %s", file.source.key.c_str(), file.Text());
        SaySubsampling(request.factors.earth);
    }
    if (request.WantsLayoverShadow()) {
        Say("   o. layover and shadow requested");
        Say("      - layover shadow img: .. %s", request.layover_shadow_file.Text());
    }
}

}  // namespace

void LogRequestSummary(const REQUEST& request) {
    Say(" ");
    Say(" - Program configuration:");
    Say("   a. master pool: ........... %s", request.pools.master_pool.Text());
    Say("   b. slave pool: ............ %s", request.pools.slave_pool.Text());
    Say("   c. insar pool: ............ %s", request.pools.insar_pool.Text());
    Say("   d. log pool: .............. %s", request.pools.log_pool.Text());
    Say("   e. dem pool: .............. %s", request.terrain.dem_pool.Text());
    Say("   f. range time shift: ...... %s", request.terrain.range_time_shift.Text());
    RequireText(request.observation_mode.source, request.observation_mode.text, *request.observation_mode.range);
    Say("   g. observation mode: ...... %s", request.observation_mode.Text());
    Say("   h. looks range: ........... %s", request.looks_range.Text());
    Say("   i. looks azimuth: ......... %s", request.looks_azimuth.Text());
    SayProducts(request);
    if (request.extension.extended) {
        Say("   m. extended simulation area");
        Say("      - extension in x: ...... %d", request.extension.x);
        Say("      - extension in y: ...... %d", request.extension.y);
    }
    if (request.WantsPhase() && request.phase.initial_value.Given())
        Say("   * Invalid ifgrm value: .... %s ", request.phase.initial_value.Text());
    if (request.terrain.valid_heights.Given())
        Say("   * Valid dem value range: .. %s ", request.terrain.valid_heights.Text());
    Say(" ");
}
