/// \file status_files.h
/// The small files that tell a processing chain how a run ended. Their folder may be writable for others, so a link (or
/// a named pipe, or a file that has a second name elsewhere) planted under the name is replaced, never followed. All
/// functions but CanBeRemoved are async-signal-safe.

#pragma once

/// Makes the file hold exactly this digit, without a line end. An ordinary file is rewritten in place, so that there is
/// no moment without it: a run that is killed leaves its ERROR file behind.
/// @return false when it cannot be written
[[nodiscard]] bool WriteStatusFile(const char* path, char digit) noexcept;

/// Removes the name, whatever it stands for. @return whether there is none now; else errno tells why
bool RemoveStatusFile(const char* path) noexcept;

/// Whether the name could be removed, and there is one: false in a folder that is not ours to write into, and for
/// another owner's file in a sticky folder. @return true as well when there is no such file
[[nodiscard]] bool CanBeRemoved(const char* path) noexcept;

/// Whether there is nothing, or a file (no link) that a status file could be.
[[nodiscard]] bool HoldsAtMostADigit(const char* path) noexcept;

/// Whether the path can be opened for reading.
[[nodiscard]] bool CanBeRead(const char* path) noexcept;
