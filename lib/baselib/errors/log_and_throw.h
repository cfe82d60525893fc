/// \file log_and_throw.h
/// How a failure leaves the place where it is found: the details at ALARM first, then the exception.

#pragma once

#include <cstdarg>

#include "lib/baselib/logging/logging.h"

/// One line at ALARM, in printf style, then an exception of this class, whose text is its own:
///     LogAndThrow<ERROR_PARAMETER>("%s: there is no zone %d", path.c_str(), zone);
/// @throws ERROR always
template <class ERROR>
[[noreturn]] void LogAndThrow(const char* format, ...) __attribute__((format(printf, 1, 2)));

template <class ERROR>
[[noreturn]] void LogAndThrow(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Log().MessageOf(LOGGING_LEVEL::ALARM, format, arguments);
    va_end(arguments);
    throw ERROR();
}
