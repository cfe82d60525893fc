/// \file left_over_files.h
/// Temporaries of products: their names, and those that a killed run has left.
/// A temporary of the product "phase.ras" is ".velmora_<sum of its name>_<process>_<number>" in the product's folder,
/// its backup the same with ".old". Its run holds a lock on it: what nobody holds is a left-over.

#pragma once

#include <sys/types.h>

#include <string>

#include "lib/baselib/image/output_path.h"

/// The path of a temporary of this process. @param number  tells those of one product from each other
[[nodiscard]] std::string TemporaryPath(const FOLDER_AND_NAME& product, int number);

/// Removes the product's left-overs. One whose lock can not be asked for stays and is told at WARNING.
void RemoveLeftOvers(const FOLDER_AND_NAME& product);

/// Makes a new temporary of the product, locked.
/// @param permissions  before the process's mask
/// @param path         receives its path
/// @return descriptor for reading and writing, or -1 with errno set
int MakeTemporary(const FOLDER_AND_NAME& product, mode_t permissions, std::string& path);
