/// \file system_error_text.h
/// The texts for the errors of system calls that the image memory reports.

#pragma once

#include <string>

/// The line for an errno value of a failed open().
const char* OpenErrorText(int error_number);

/// The line, without its line end, for an errno value of a failed msync().
const char* MsyncErrorText(int error_number);

/// Logs at ALARM that this file can not be opened, and why.
void LogOpenFailure(const std::string& path, int error_number);
