/// \file observation_mode.h
/// The table of observation modes.

#pragma once

#include <string>

#include "app/keys/control_values.h"

/// Single pass: one transmitter, two receivers. Dual pass: the repeat case.
struct OBSERVATION_MODE {
    int identifier = 0;
    std::string text;
    double factor = 0.0;  ///< kept for the record; the kernel always works with the two-way factor 2

    [[nodiscard]] bool IsSinglePass() const { return identifier == 1; }
};

/// Exact, case-sensitive match: "single_pass" or "dual_pass".
/// @throws ERROR_ARGUMENT for any other text, after a line of its own and one that names file and key
[[nodiscard]] OBSERVATION_MODE ObservationModeOf(const SOURCED_TEXT& mode);
