/// \file input_file.h
/// Reading the files that users hand in.

#pragma once

#include <cstddef>
#include <string>

/// The whole content of a regular file.
/// @throws COMPANION_ERROR for a file that cannot be read, that is no regular file, or that holds more than limit bytes
[[nodiscard]] std::string ReadWholeFile(const std::string& path, std::size_t limit_bytes);

/// @throws COMPANION_ERROR unless the path is a regular file: opening a parameter pool would create a missing one
void RequireRegularFile(const std::string& path);
