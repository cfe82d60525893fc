/// \file raster_create.cpp
/// MEM_MGR: creating raster files that are written through their mapping.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/raster_output.h"
#include "lib/baselib/logging/logging.h"

namespace {

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

int OpenNewFile(const std::string& path, mode_t permissions) {
    FILE_DESCRIPTOR file(OpenRasterOutput(path, permissions));
    if (file.Get() < 0) {
        if (IsOutOfSpace(errno)) throw ERROR_NO_DISK_SPACE();
        throw ERROR_CAN_NOT_CREATE_FILE();
    }
    if (!IsFileOfKind(file.Get(), S_IFREG)) {
        Log().Message(LOGGING_LEVEL::ALARM, "%s: is no regular file; an image can not be created in it", path.c_str());
        throw ERROR_CAN_NOT_CREATE_FILE();
    }
    return file.Release();
}

/// Cuts the file to nothing, reserves its full size and writes the header. A page of a mapping that finds no room on
/// disk when it is first touched is a bus error; hence the reservation.
void FillNewFile(const std::string& path, int file_descriptor, const RASTER_HEADER& header) {
    const long long bytes = RasterFileBytes(header);
    const RASTER_HEADER_BYTES header_bytes = EncodeRasterHeader(header);
    int error = ftruncate(file_descriptor, 0) == 0 ? 0 : errno;
    if (error == 0) error = ReserveOnDisk(file_descriptor, bytes);
    if (error == 0) error = WriteWhole(file_descriptor, header_bytes.data(), header_bytes.size());
    if (error == 0) return;
    const char* const what = IsOutOfSpace(error) ? "no room" : "can not set up a file";
    Log().Message(LOGGING_LEVEL::ALARM, "%s: %s for an image of %u x %u pixels, %lld bytes: %s", path.c_str(), what,
                  header.width, header.height, bytes, std::strerror(error));
    if (IsOutOfSpace(error)) throw ERROR_NO_DISK_SPACE();
    throw ERROR_CAN_NOT_WRITE_FILE();
}

}  // namespace

void MEM_MGR::CreateFile(const std::string& path, long long columns, long long rows, PIXEL_TYPE pixel_type,
                         mode_t permissions) {
    Free();
    const PIXEL_TYPE_RECORD& type = KnownPixelType(pixel_type);
    const RASTER_HEADER header = RasterHeaderFor(path, columns, rows, type);
    Log().Message(LOGGING_LEVEL::INFO, "creating file with dimensions %lld x %lld: %s", columns, rows, path.c_str());
    FILE_DESCRIPTOR file(OpenNewFile(path, permissions));
    UNFINISHED_FILE unfinished(path);
    FillNewFile(path, file.Get(), header);
    MapOpenFile(path, file.Get(), PROT_READ | PROT_WRITE, kRasterHeaderBytes, columns, rows, type);
    file.Release();
    unfinished.Keep();
}
