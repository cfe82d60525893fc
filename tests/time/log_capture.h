/// \file log_capture.h
/// Runs something and returns what it logged.

#pragma once

#include <gmock/gmock.h>

#include <string>

#include "lib/baselib/logging/logging.h"

/// Lines logged at the level or above while the function ran, without the terminal's colours.
template <class FUNCTION>
std::string LoggedBy(FUNCTION function, LOGGING_LEVEL level = LOGGING_LEVEL::DEBUG) {
    Log().SetScreenThreshold(static_cast<int>(level));
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    function();
    std::fflush(stdout);
    std::string text = testing::internal::GetCapturedStdout();
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::DEBUG));  // as at the start
    for (size_t at = text.find("\x1b["); at != std::string::npos; at = text.find("\x1b[")) {
        text.erase(at, text.find('m', at) - at + 1);
    }
    return text;
}

/// The const char* that the function throws, or "nothing thrown".
template <class FUNCTION>
std::string TextThrownBy(FUNCTION function) {
    try {
        function();
    } catch (const char* text) {
        return text;
    }
    return "nothing thrown";
}
