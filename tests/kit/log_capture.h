/// \file log_capture.h
/// Runs something and returns what it logged or threw.

#pragma once

#include <gmock/gmock.h>

#include <cstdio>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

/// What the function writes to the screen.
template <class FUNCTION>
std::string ScreenOf(FUNCTION function) {
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    function();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

/// Lines logged at the level or above while the function ran, without the terminal's colours.
template <class FUNCTION>
std::string LoggedBy(FUNCTION function, LOGGING_LEVEL level = LOGGING_LEVEL::DEBUG) {
    Log().SetScreenThreshold(static_cast<int>(level));
    std::string text = ScreenOf(function);
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::DEBUG));  // as at the start
    for (size_t at = text.find("\x1b["); at != std::string::npos; at = text.find("\x1b[")) {
        text.erase(at, text.find('m', at) - at + 1);
    }
    return text;
}

/// The same after the text of its failure: "pool error - key not found\n...".
template <class FUNCTION>
std::string ErrorAndLogOf(FUNCTION function, LOGGING_LEVEL level = LOGGING_LEVEL::DEBUG) {
    std::string failure;
    const auto attempt = [&] {
        try {
            function();
        } catch (const ERROR_EXCEPTION& error) {
            failure = error.Message() + "\n";
        } catch (const char* message) {
            failure = std::string(message) + "\n";
        }
    };
    const std::string log = LoggedBy(attempt, level);
    return failure + log;
}

/// How often the part stands in the text.
inline int CountOf(const std::string& part, const std::string& text) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
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
