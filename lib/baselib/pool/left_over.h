/// \file left_over.h
/// Temporary files that an interrupted update left beside its pool. From the moment in which the pool is truncated
/// until the copy is complete, the new content stands in a regular file pool_?????? of mode 0400 that the writer has
/// locked; when the writer was killed in between, the file is still there and nobody has locked it.

#pragma once

#include <string>

/// Names each left-over in the folder at WARNING, once per run. @param pool_descriptor an open pool of that folder
void WarnOfLeftOvers(const std::string& directory, int pool_descriptor);
