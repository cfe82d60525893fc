/// \file whole_file.h
/// Small files that stand beside products: at every moment the older or the whole new one is on the disk.

#pragma once

#include <string>

/// Writes a temporary beside the file, brings it to the disk and gives it the file's name. A link is replaced, not
/// followed. What a killed run left of the same file is removed; a signal leaves nothing.
/// @return 0, or the errno value; the older file is then as it was
[[nodiscard]] int ReplaceFile(const std::string& path, const std::string& content);

/// Brings the names in a folder to the disk. @return 0, or the errno value; some file systems have no such thing
int SynchroniseFolder(const std::string& folder);
