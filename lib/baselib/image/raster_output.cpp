#include "lib/baselib/image/raster_output.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/system_error_text.h"

namespace {

constexpr long long kMaxWord = std::numeric_limits<std::uint32_t>::max();

}  // namespace

RASTER_HEADER RasterHeaderFor(const std::string& path, long long columns, long long rows,
                              const PIXEL_TYPE_RECORD& type) {
    long long length = 0;
    const bool fits = columns >= 0 && rows >= 0 && columns <= kMaxWord && rows <= kMaxWord &&
                      !__builtin_mul_overflow(columns, rows, &length) &&
                      !__builtin_mul_overflow(length, type.bytes, &length) &&
                      length <= std::numeric_limits<long long>::max() - kRasterHeaderBytes;
    if (!fits) {
        LogAndThrow<ERROR_IMAGE>(
            "%s: a raster file can not hold %lld x %lld pixels of %d bytes: its header counts at most %lld "
            "columns and rows",
            path.c_str(), columns, rows, type.bytes, kMaxWord);
    }
    RASTER_HEADER header;
    header.width = static_cast<std::uint32_t>(columns);
    header.height = static_cast<std::uint32_t>(rows);
    header.depth = 8 * static_cast<std::uint32_t>(type.bytes);
    header.length = length <= kMaxWord ? static_cast<std::uint32_t>(length) : 0;
    header.type = type.type_word;
    return header;
}

long long RasterFileBytes(const RASTER_HEADER& header) {
    return kRasterHeaderBytes + static_cast<long long>(header.width) * header.height * (header.depth / 8);
}

int OpenRasterOutput(const std::string& path, mode_t permissions) {
    const int number = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, permissions);
    if (number < 0) {
        const int error = errno;
        LogOpenFailure(path, error);
        errno = error;
    }
    return number;
}

bool IsFileOfKind(int file_descriptor, mode_t kind) {
    struct stat status {};
    return fstat(file_descriptor, &status) == 0 && (status.st_mode & S_IFMT) == kind;
}
