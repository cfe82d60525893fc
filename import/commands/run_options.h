/// \file run_options.h
/// What the commands that make folders of runs ask alike.

#pragma once

#include <string>
#include <vector>

#include "companions/companion_program.h"

struct RUN_OPTIONS {
    std::string dem_pool;
    std::string folder;
    std::string lines;                     ///< A:B, empty for all
    std::string samples;                   ///< C:D, empty for all
    std::vector<int> shift_factors{1, 1};  ///< range, azimuth
    std::vector<int> earth_factors{1, 1};  ///< range, azimuth
    std::string interpolation;             ///< empty for what suits the state vectors
};

/// The help of those options that concern one run here and many there.
struct RUN_OPTIONS_HELP {
    const char* folder;
    const char* lines;
    const char* samples;
    const char* interpolation;
};

void AddRunOptions(COMPANION_COMMAND& command, RUN_OPTIONS& options, const RUN_OPTIONS_HELP& help);
