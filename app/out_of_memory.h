/// \file out_of_memory.h
/// Tells that memory could not be had, and in which step of the run: at once, before any handler of the failure runs,
/// and without needing memory itself. The first time only: what follows is a consequence.

#pragma once

/// From now on a failing operator new logs the line of the present step at ALARM, then throws std::bad_alloc as ever.
void ReportOutOfMemory() noexcept;

/// @param line  "out of memory while ..."; it must live as long as the process
void SetOutOfMemoryLine(const char* line) noexcept;

/// The line that was logged; null while memory sufficed. Async-signal-safe.
[[nodiscard]] const char* OutOfMemoryLine() noexcept;
