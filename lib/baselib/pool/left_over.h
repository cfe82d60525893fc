/// \file left_over.h
/// Temporary files that an interrupted update left beside its pool. From the moment in which the pool is truncated
/// until the copy is complete, the new content stands in a regular file pool_?????? of mode 0400 that the writer has
/// locked; when the writer was killed in between, the file is still there and nobody has locked it. A writer that was
/// killed earlier leaves one of mode 0600.

#pragma once

#include <string>

#include "lib/baselib/pool/pool_file.h"

/// Names each left-over in the pool's folder at WARNING, once per run. While one of them holds more of the pool than
/// the pool itself, going on would make the loss final: the log then says how to recover.
/// @param content of the pool @throws CORRUPTED_PARAMETER_POOL
void CheckLeftOvers(const POOL_FILE& pool, const std::string& content);
