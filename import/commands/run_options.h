/// \file run_options.h
/// What the commands that make folders of runs ask alike.

#pragma once

#include "companions/companion_program.h"
#include "import/pair/run_request.h"

/// The help of those options that concern one run here and many there.
struct RUN_OPTIONS_HELP {
    const char* folder;
    const char* lines;
    const char* samples;
    const char* interpolation;
};

void AddRunOptions(COMPANION_COMMAND& command, RUN_REQUEST& request, const RUN_OPTIONS_HELP& help);
