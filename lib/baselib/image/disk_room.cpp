#include "lib/baselib/image/disk_room.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/output_path.h"
#include "lib/baselib/image/product_file.h"
#include "lib/baselib/image/raster_output.h"

namespace {

/// The system would end the process by SIGXFSZ.
bool ExceedsFileSizeLimit(long long bytes) {
    rlimit limit{};
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && static_cast<rlim_t>(bytes) > limit.rlim_cur;
}

}  // namespace

long long FileBytes(const PRODUCT_REQUEST& product) {
    return RasterFileBytes(
        RasterHeaderFor(product.path, product.columns, product.rows, KnownPixelType(product.pixel_type)));
}

void RefuseForRoom(const PRODUCT_REQUEST& product, long long there, int error) {
    LogAndThrow<ERROR_NO_DISK_SPACE>(
        "configuration: key \"%s\": %s: no room for an image of %lld x %lld pixels: %lld bytes are needed, %lld are "
        "there: %s",
        product.key.c_str(), product.path.c_str(), product.columns, product.rows, FileBytes(product), there,
        std::strerror(error));
}

long long BytesThere(int descriptor) {
    struct statvfs status {};
    if (fstatvfs(descriptor, &status) != 0) return 0;
    return static_cast<long long>(status.f_frsize) *
           static_cast<long long>(geteuid() == 0 ? status.f_bfree : status.f_bavail);
}

void RequireRoom(const PRODUCT_REQUEST& product, int descriptor, std::map<dev_t, long long>& asked) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return;
    const long long bytes = FileBytes(product);
    const long long there = BytesThere(descriptor) - asked[status.st_dev];
    const long long present = S_ISREG(status.st_mode) ? 512LL * status.st_blocks : 0;  // of one written in place
    const long long needed = std::max(bytes - present, 0LL);
    if (needed > there) RefuseForRoom(product, std::max(there, 0LL), ENOSPC);
    if (ExceedsFileSizeLimit(bytes)) RefuseForRoom(product, there, EFBIG);
    asked[status.st_dev] += needed;
}

void RequireRoomForAll(const std::vector<PRODUCT_REQUEST>& products) {
    std::map<dev_t, long long> asked;
    for (const PRODUCT_REQUEST& product : products) {
        const std::string target = BehindLinks(product.path);
        struct stat older {};
        if (stat(target.c_str(), &older) == 0 && !S_ISREG(older.st_mode)) continue;
        const FILE_DESCRIPTOR folder(OpenFile(FOLDER_AND_NAME(target).FolderPath(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (folder.Get() >= 0) RequireRoom(product, folder.Get(), asked);
    }
}
