/// \file results.h
/// Standard output carries the results of a companion program and nothing else. What libraries write there (the
/// processor's log lines, progress bars) goes to standard error.

#pragma once

#include <string>

/// Call once, first thing in main().
void SeparateResultsFromMessages();

/// One line, or several, of the command's result.
void PrintResult(const char* format, ...) __attribute__((format(printf, 1, 2)));
void PrintResultText(const std::string& text);

/// @throws COMPANION_ERROR when the results could not be written (disk full, reader gone)
void FlushResults();
