#include "lib/baselib/controller/status_files.h"

#include <fcntl.h>
#include <libgen.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "lib/baselib/logging/unless_interrupted.h"

namespace {

/// The existing file, when it is an ordinary one under this only name. O_NONBLOCK: opening a pipe must not wait.
int OpenExisting(const char* path) noexcept {
    const int descriptor =
        UnlessInterrupted([=] { return open(path, O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); });
    if (descriptor < 0) return -1;
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1) return descriptor;
    close(descriptor);
    return -1;
}

int CreateAfresh(const char* path) noexcept {
    unlink(path);
    return UnlessInterrupted([=] { return open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666); });
}

}  // namespace

bool WriteStatusFile(const char* path, char digit) noexcept {
    int descriptor = OpenExisting(path);
    if (descriptor < 0) descriptor = CreateAfresh(path);
    if (descriptor < 0) return false;
    // Overwritten first and cut afterwards: on a full disk the old digit's place is still there.
    const bool written = UnlessInterrupted([&] { return write(descriptor, &digit, 1); }) == 1 &&
                         UnlessInterrupted([=] { return ftruncate(descriptor, 1); }) == 0;
    return (close(descriptor) == 0 || errno == EINTR) && written;  // interrupted it is closed all the same
}

bool RemoveStatusFile(const char* path) noexcept {
    const int result = UnlessInterrupted([=] { return unlink(path); });
    return result == 0 || errno == ENOENT || errno == ENOTDIR;
}

bool CanBeRemoved(const char* path) noexcept {
    struct stat file = {};
    struct stat folder = {};
    char name[PATH_MAX] = "";
    if (lstat(path, &file) != 0 || S_ISDIR(file.st_mode)) return !S_ISDIR(file.st_mode);
    std::strncpy(name, path, sizeof name - 1);
    const char* const folder_name = dirname(name);
    if (faccessat(AT_FDCWD, folder_name, W_OK | X_OK, AT_EACCESS) != 0 || stat(folder_name, &folder) != 0) return false;
    const uid_t user = geteuid();
    const bool is_sticky = (folder.st_mode & S_ISVTX) != 0;
    return !is_sticky || user == 0 || user == file.st_uid || user == folder.st_uid;
}

bool HoldsAtMostADigit(const char* path) noexcept {
    struct stat status = {};
    return lstat(path, &status) != 0 || (S_ISREG(status.st_mode) && status.st_size <= 1);
}

bool CanBeRead(const char* path) noexcept {
    const int descriptor = UnlessInterrupted([=] { return open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC); });
    if (descriptor < 0) return false;
    close(descriptor);
    return true;
}
