/// \file raster_save.cpp
/// MEM_MGR: creating and saving raster files.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/raster_header.h"
#include "lib/baselib/image/system_error_text.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr long long kMaxWord = std::numeric_limits<std::uint32_t>::max();

/// Narrow images are written many rows at a time: a system call for each row would cost more than the bytes.
constexpr long long kBytesPerWrite = 1 << 20;

/// The header of an image of this size.
/// @throws ERROR_IMAGE when a size does not fit its 32-bit word
RASTER_HEADER HeaderFor(const std::string& path, long long columns, long long rows, const PIXEL_TYPE_RECORD& type) {
    long long length = 0;
    const bool fits = columns >= 0 && rows >= 0 && columns <= kMaxWord && rows <= kMaxWord &&
                      !__builtin_mul_overflow(columns, rows, &length) &&
                      !__builtin_mul_overflow(length, type.bytes, &length) && length <= kMaxWord;
    if (!fits) {
        Log().Message(LOGGING_LEVEL::ALARM,
                      "%s: a raster file can not hold %lld x %lld pixels of %d bytes: its header counts at most %lld "
                      "columns, rows and bytes",
                      path.c_str(), columns, rows, type.bytes, kMaxWord);
        throw ERROR_IMAGE();
    }
    RASTER_HEADER header;
    header.width = static_cast<std::uint32_t>(columns);
    header.height = static_cast<std::uint32_t>(rows);
    header.depth = 8 * static_cast<std::uint32_t>(type.bytes);
    header.length = static_cast<std::uint32_t>(length);
    header.type = type.type_word;
    return header;
}

void LogOpenFailure(const std::string& path, int error) {
    Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: can not open: %s", path.c_str());
    Log().Message(LOGGING_LEVEL::ALARM, "%s", OpenErrorText(error));
}

/// Opens an output, creating it when it is not there. A link is followed: users link outputs to other disks.
/// The file is not cut yet, so that a special file or device can be told first.
/// @return the descriptor, or -1 with errno set and the reason logged
int OpenOutput(const std::string& path, mode_t permissions) {
    const int number = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, permissions);
    if (number < 0) {
        const int error = errno;
        LogOpenFailure(path, error);
        errno = error;
    }
    return number;
}

bool IsOfKind(int file_descriptor, mode_t kind) {
    struct stat status {};
    return fstat(file_descriptor, &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

bool IsOutOfSpace(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

/// posix_fallocate writes into every block itself where the file system can not reserve room.
int ReserveOnDisk(int file_descriptor, long long bytes) {
    int error = EINTR;
    while (error == EINTR) error = posix_fallocate(file_descriptor, 0, bytes);
    return error;
}

/// Removes a file that could not be completed; of a linked output the file behind the link goes, the link stays.
void RemoveFile(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr), &std::free);
    unlink(target != nullptr ? target.get() : path.c_str());
}

/// Removes the file of a creation that does not reach Keep().
class UNFINISHED_FILE {
  public:
    explicit UNFINISHED_FILE(std::string path) : path_(std::move(path)) {}
    UNFINISHED_FILE(const UNFINISHED_FILE&) = delete;
    UNFINISHED_FILE& operator=(const UNFINISHED_FILE&) = delete;
    ~UNFINISHED_FILE() {
        if (!kept_) RemoveFile(path_);
    }
    void Keep() { kept_ = true; }

  private:
    std::string path_;
    bool kept_ = false;
};

/// Cuts the file to nothing, reserves its full size and writes the header.
void FillNewFile(const std::string& path, int file_descriptor, const RASTER_HEADER& header) {
    const long long bytes = kRasterHeaderBytes + static_cast<long long>(header.length);
    int error = ftruncate(file_descriptor, 0) == 0 ? 0 : errno;
    if (error == 0) error = ReserveOnDisk(file_descriptor, bytes);
    const RASTER_HEADER_BYTES header_bytes = EncodeRasterHeader(header);
    if (error == 0) error = WriteWhole(file_descriptor, header_bytes.data(), header_bytes.size());
    if (error == 0) return;
    if (IsOutOfSpace(error)) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: no room for %lld bytes: %s", path.c_str(), bytes,
                      std::strerror(error));
        throw ERROR_NO_DISK_SPACE();
    }
    Log().Message(LOGGING_LEVEL::ALARM, "%s: can not set up a file of %lld bytes: %s", path.c_str(), bytes,
                  std::strerror(error));
    throw ERROR_CAN_NOT_WRITE_FILE();
}

}  // namespace

void MEM_MGR::CreateFile(const std::string& path, long long columns, long long rows, PIXEL_TYPE pixel_type,
                         mode_t permissions) {
    const PIXEL_TYPE_RECORD* const type = FindPixelType(pixel_type);
    if (type == nullptr) {
        Log() << LOGGING_LEVEL::ALARM << "MEM_MGR: unknown pixeltype\n";
        throw ERROR_NOT_SUPPORTED_PIXEL_TYPE();
    }
    Free();
    const RASTER_HEADER header = HeaderFor(path, columns, rows, *type);
    Log().Message(LOGGING_LEVEL::INFO, "creating file with dimensions %lld x %lld: %s", columns, rows, path.c_str());
    FILE_DESCRIPTOR file(OpenOutput(path, permissions));
    if (file.Get() < 0) {
        if (IsOutOfSpace(errno)) throw ERROR_NO_DISK_SPACE();
        throw ERROR_CAN_NOT_CREATE_FILE();
    }
    if (!IsOfKind(file.Get(), S_IFREG)) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: is no regular file; an image can not be created in it", path.c_str());
        throw ERROR_CAN_NOT_CREATE_FILE();
    }
    UNFINISHED_FILE unfinished(path);
    FillNewFile(path, file.Get(), header);
    MapOpenFile(path, file.Get(), PROT_READ | PROT_WRITE, kRasterHeaderBytes, columns, rows, *type);
    file.Release();
    unfinished.Keep();
}

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
    const RASTER_HEADER header = HeaderFor(path, Columns(), Rows(), *type);
    if (IsMappedFrom(path)) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: an image can not be saved into the file that it is mapped from",
                      path.c_str());
        throw ERROR_CAN_NOT_OPEN_FILE();
    }
    FILE_DESCRIPTOR file(OpenOutput(path, permissions));
    if (file.Get() < 0) throw ERROR_CAN_NOT_OPEN_FILE();
    const bool regular = IsOfKind(file.Get(), S_IFREG);
    if ((!regular && !IsOfKind(file.Get(), S_IFCHR)) || (regular && ftruncate(file.Get(), 0) != 0)) {
        Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: can not open: %s", path.c_str());
        Log().Message(LOGGING_LEVEL::ALARM, "%s: can not be replaced by an image", path.c_str());
        throw ERROR_CAN_NOT_OPEN_FILE();
    }
    const RASTER_HEADER_BYTES header_bytes = EncodeRasterHeader(header);
    if (const int error = WriteWhole(file.Get(), header_bytes.data(), header_bytes.size()); error != 0) {
        file.Close();
        Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: can not save header for %s", path.c_str());
        Log().Message(LOGGING_LEVEL::ALARM, "%s: %s", path.c_str(), std::strerror(error));
        throw ERROR_CAN_NOT_WRITE_FILE();
    }
    const long long row_bytes = Columns() * held_.bytes_per_pixel;
    const long long rows_per_write = row_bytes == 0 ? 0 : std::max(kBytesPerWrite / row_bytes, 1LL);
    int error = 0;
    for (long long row = 0; row < Rows() && row_bytes > 0 && error == 0; row += rows_per_write) {
        const long long rows = std::min(rows_per_write, Rows() - row);
        error = WriteWhole(file.Get(), held_.pixels + row * row_bytes, static_cast<std::size_t>(rows * row_bytes));
    }
    if (const int close_error = file.Close(); error == 0) error = close_error;
    if (error != 0) {
        Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: unable to write into: %s", path.c_str());
        Log().Message(LOGGING_LEVEL::ALARM, "%s: %s", path.c_str(), std::strerror(error));
        throw ERROR_CAN_NOT_WRITE_FILE();
    }
}
