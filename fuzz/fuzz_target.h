/// What the fuzz targets share.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

inline void Require(bool condition) {
    if (!condition) std::abort();
}

/// A folder in memory: an input must not wait for a disk.
inline const std::string& Folder() {
    static const std::string folder = [] {
        char name[] = "/dev/shm/fuzz_XXXXXX";
        Require(mkdtemp(name) != nullptr);
        return std::string(name);
    }();
    return folder;
}

/// Logging would cost more than the reading.
inline const bool kSilent = [] {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    return true;
}();
