/// \file configuration_keys.h
/// The keys of the run configuration and of the controller: one table feeds the usage page, the recognition of mistyped
/// keys and docs/process_frame.md.

#pragma once

#include <span>
#include <string>
#include <vector>

enum class KEY_NEED {
    MANDATORY,  ///< asked at the keyboard when no source has it
    OPTIONAL,
    FORCES_POOL,  ///< optional; wins over the InSAR pool's key of the same name in small letters and is written there
    CONTROLLER    ///< optional; steers files and logging, not the simulation
};

struct CONFIGURATION_KEY {
    const char* name;
    KEY_NEED need;
    const char* value;     ///< kind of value, with its unit
    const char* fallback;  ///< what holds without the key; empty for a mandatory one
    const char* help;
};

[[nodiscard]] std::span<const CONFIGURATION_KEY> ConfigurationKeys();
[[nodiscard]] std::vector<std::string> ConfigurationKeyNames();
