#include "lib/baselib/pool/left_over.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>
#include <set>

#include "lib/baselib/logging/logging.h"

namespace {

bool IsLocked(int folder, const char* name) {
    const int descriptor = openat(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return false;  // better named once too often than never
    const bool locked = flock(descriptor, LOCK_SH | LOCK_NB) != 0;
    close(descriptor);
    return locked;
}

/// @param pool_owner files of others than the pool's owner, ourselves or root are no business of this pool
bool IsLeftOver(int folder, const char* name, uid_t pool_owner) {
    struct stat status {};
    if (fnmatch("pool_??????", name, 0) != 0 || fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    const bool is_ours = status.st_uid == pool_owner || status.st_uid == geteuid() || status.st_uid == 0;
    return S_ISREG(status.st_mode) && (status.st_mode & 07777) == 0400 && is_ours && !IsLocked(folder, name);
}

bool IsFirstTime(const std::string& path) {
    static std::mutex mutex;
    static std::set<std::string> named;
    const std::lock_guard lock(mutex);
    return named.insert(path).second;
}

}  // namespace

void WarnOfLeftOvers(const std::string& directory, int pool_descriptor) {
    struct stat pool {};
    DIR* const folder = opendir(directory.c_str());
    if (folder == nullptr) return;
    if (fstat(pool_descriptor, &pool) == 0) {
        while (const dirent* const entry = readdir(folder)) {
            if (!IsLeftOver(dirfd(folder), entry->d_name, pool.st_uid)) continue;
            const std::string path = directory + "/" + entry->d_name;
            if (!IsFirstTime(path)) continue;
            Log().Message(
                LOGGING_LEVEL::WARNING,
                "%s holds the content of a pool whose update was interrupted: see \"Recovery\" in docs/pools.md",
                path.c_str());
        }
    }
    closedir(folder);
}
