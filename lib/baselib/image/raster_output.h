/// \file raster_output.h
/// What saving an image and writing a product have in common: the header, and the output file.

#pragma once

#include <sys/types.h>

#include <string>

#include "lib/baselib/image/pixel_type.h"
#include "lib/baselib/image/raster_header.h"

/// The header of an image of this size. Its length word is 0 when the pixel bytes do not fit into it.
/// @param path  for the message
/// @throws ERROR_IMAGE when the columns or rows do not fit their 32-bit words, or the bytes no file
RASTER_HEADER RasterHeaderFor(const std::string& path, long long columns, long long rows,
                              const PIXEL_TYPE_RECORD& type);

/// Bytes of the file with such a header.
long long RasterFileBytes(const RASTER_HEADER& header);

/// Opens a file for reading and writing, and creates it when it is not there. A link is followed: users link outputs to
/// other disks. The file is not cut to length 0 yet, so that the caller can look first at what it is.
/// @return the descriptor; or -1, the reason logged and errno set
int OpenRasterOutput(const std::string& path, mode_t permissions);

/// Is the open file of this kind: S_IFREG, S_IFCHR, ...?
bool IsFileOfKind(int file_descriptor, mode_t kind);
