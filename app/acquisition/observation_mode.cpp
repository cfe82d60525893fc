#include "app/acquisition/observation_mode.h"

#include <array>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

OBSERVATION_MODE ObservationModeOf(const std::string& text) {
    static const std::array<OBSERVATION_MODE, 2> modes = {{{1, "single_pass", 1.0}, {2, "dual_pass", 2.0}}};
    for (const OBSERVATION_MODE& mode : modes) {
        if (mode.text == text) return mode;
    }
    Log().Message(LOGGING_LEVEL::ALARM, "can not convert >%s< to observation mode", text.c_str());
    throw ERROR_ARGUMENT();
}
