/// \file raster_save.cpp
/// MEM_MGR: saving an image as a raster file.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/raster_output.h"
#include "lib/baselib/image/system_error_text.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// Narrow images are written many rows at a time: a system call for each row would cost more than its bytes.
constexpr long long kBytesPerSave = 1 << 20;

/// An open, empty file, or a character device such as /dev/null.
int OpenToSave(const std::string& path, mode_t permissions) {
    FILE_DESCRIPTOR file(OpenRasterOutput(path, permissions));
    if (file.Get() < 0) throw ERROR_CAN_NOT_OPEN_FILE();
    const bool regular = IsFileOfKind(file.Get(), S_IFREG);
    if (!regular && !IsFileOfKind(file.Get(), S_IFCHR)) {
        LogOpenFailure(path, EINVAL);
        LogAndThrow<ERROR_CAN_NOT_OPEN_FILE>("%s: is no regular file and can not be replaced by an image",
                                             path.c_str());
    }
    if (regular && ftruncate(file.Get(), 0) != 0) {
        LogOpenFailure(path, errno);
        throw ERROR_CAN_NOT_OPEN_FILE();
    }
    return file.Release();
}

[[noreturn]] void FailWriting(const std::string& path, const char* what, int error) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s%s", what, path.c_str());
    LogAndThrow<ERROR_CAN_NOT_WRITE_FILE>("%s: %s", path.c_str(), std::strerror(error));
}

/// @return 0 or the errno value
int WriteRows(int file_descriptor, const std::byte* pixels, long long rows, long long row_bytes) {
    if (row_bytes == 0) return 0;
    const long long rows_per_write = std::max(kBytesPerSave / row_bytes, 1LL);
    for (long long row = 0; row < rows; row += rows_per_write) {
        const long long bytes = std::min(rows_per_write, rows - row) * row_bytes;
        const int error = WriteWhole(file_descriptor, pixels + row * row_bytes, static_cast<std::size_t>(bytes));
        if (error != 0) return error;
    }
    return 0;
}

}  // namespace

/// The file that an image is mapped from must not be cut to be written: its pixels would be gone.
bool MEM_MGR::IsMappedFrom(const std::string& path) const {
    struct stat mapped {};
    struct stat other {};
    return held_.storage == STORAGE_STATE::MAPPED_FILE && fstat(held_.file_descriptor, &mapped) == 0 &&
           stat(path.c_str(), &other) == 0 && mapped.st_dev == other.st_dev && mapped.st_ino == other.st_ino;
}

void MEM_MGR::SaveSunRasterFile(const std::string& path, mode_t permissions) const {
    const PIXEL_TYPE_RECORD* const type = FindPixelType(held_.pixel_type);
    if (type == nullptr) {
        Log() << LOGGING_LEVEL::ALARM << "MEM_MGR: unknown data type\n";
        throw ERROR_ALGORITHM();
    }
    const RASTER_HEADER_BYTES header = EncodeRasterHeader(RasterHeaderFor(path, Columns(), Rows(), *type));
    if (IsMappedFrom(path)) {
        LogAndThrow<ERROR_CAN_NOT_OPEN_FILE>("%s: an image can not be saved into the file that it is mapped from",
                                             path.c_str());
    }
    FILE_DESCRIPTOR file(OpenToSave(path, permissions));
    if (const int error = WriteWhole(file.Get(), header.data(), header.size()); error != 0) {
        file.Close();
        FailWriting(path, "MEM_MGR: can not save header for ", error);
    }
    const int write_error = WriteRows(file.Get(), held_.pixels, Rows(), Columns() * held_.bytes_per_pixel);
    const int close_error = file.Close();
    if (write_error != 0 || close_error != 0) {
        FailWriting(path, "MEM_MGR: unable to write into: ", write_error != 0 ? write_error : close_error);
    }
}
