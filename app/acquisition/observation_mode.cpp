#include "app/acquisition/observation_mode.h"

#include <array>

#include "app/say.h"
#include "lib/baselib/errors/error_exception.h"

OBSERVATION_MODE ObservationModeOf(const SOURCED_TEXT& mode) {
    static const std::array<OBSERVATION_MODE, 2> modes = {{{1, "single_pass", 1.0}, {2, "dual_pass", 2.0}}};
    for (const OBSERVATION_MODE& known : modes) {
        if (known.text == mode.text) return known;
    }
    Explain("can not convert >%s< to observation mode", mode.Text());
    LogRefusedText(mode);
    throw ERROR_ARGUMENT();
}
