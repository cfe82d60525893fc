/// \file control_values.h
/// Looking keys of the run configuration up. A text keeps its source, so that whoever refuses it can name the key.

#pragma once

#include <optional>
#include <string>

#include "app/keys/control_key.h"
#include "app/keys/refusal.h"
#include "lib/baselib/controller/controller_ifc.h"

/// A text and where it came from; empty when its key was not given.
struct SOURCED_TEXT {
    VALUE_SOURCE source{};
    std::string text{};
    const VALUE_RANGE* range = &kAnything;  ///< of its key

    [[nodiscard]] bool Given() const { return !text.empty(); }
    [[nodiscard]] const char* Text() const { return text.c_str(); }
};

/// Names source, text and range at ALARM, for a failure whose own line and exception have fixed texts.
void LogRefusedText(const SOURCED_TEXT& value);

[[nodiscard]] bool IsGiven(CONTROLLER_IFC& controller, CONTROL_KEY key);
/// Asks the keyboard when no source has the key.
[[nodiscard]] SOURCED_TEXT RequiredText(CONTROLLER_IFC& controller, CONTROL_KEY key);
[[nodiscard]] std::optional<SOURCED_TEXT> OptionalText(CONTROLLER_IFC& controller, CONTROL_KEY key);
