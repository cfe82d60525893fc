#include "lib/baselib/controller/status_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The existing file, when it is an ordinary one under this only name. O_NONBLOCK: opening a pipe must not wait.
int OpenExisting(const char* path) noexcept {
    const int descriptor = open(path, O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return -1;
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1) return descriptor;
    close(descriptor);
    return -1;
}

int CreateAfresh(const char* path) noexcept {
    unlink(path);
    return open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
}

}  // namespace

bool WriteStatusFile(const char* path, char digit) noexcept {
    int descriptor = OpenExisting(path);
    if (descriptor < 0) descriptor = CreateAfresh(path);
    if (descriptor < 0) return false;
    // Overwritten first and cut afterwards: on a full disk the old digit's place is still there.
    const bool written = write(descriptor, &digit, 1) == 1 && ftruncate(descriptor, 1) == 0;
    return close(descriptor) == 0 && written;
}

void RemoveStatusFile(const char* path) noexcept {
    unlink(path);
}

bool CanBeRead(const char* path) noexcept {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return false;
    close(descriptor);
    return true;
}
