#include "lib/baselib/pool/left_over.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <set>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/logging/unless_interrupted.h"
#include "lib/baselib/pool/pool_errors.h"

namespace {

bool IsLocked(int folder, const char* name) {
    const int descriptor = openat(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return false;  // better named once too often than never
    const bool locked = flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(descriptor);
    return locked;
}

enum class KIND { NONE, UNFINISHED, COMPLETE };

/// @param pool_owner files of others than the pool's owner, ourselves or root are no business of this pool
KIND KindOf(int folder, const char* name, uid_t pool_owner) {
    struct stat status {};
    if (fnmatch("pool_??????", name, 0) != 0 || fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return KIND::NONE;
    const bool is_ours = status.st_uid == pool_owner || status.st_uid == geteuid() || status.st_uid == 0;
    if (!S_ISREG(status.st_mode) || !is_ours || IsLocked(folder, name)) return KIND::NONE;
    const mode_t mode = status.st_mode & 07777;
    return mode == 0400 ? KIND::COMPLETE : mode == 0600 ? KIND::UNFINISHED : KIND::NONE;
}

/// @return 0 or the errno value; EFBIG for more than a pool may have
int ReadFile(const std::string& path, std::string& content) {
    const int descriptor =
        UnlessInterrupted([&] { return open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK); });
    if (descriptor < 0) return errno;
    char block[65536];
    ssize_t count = 1;
    while (count > 0 && content.size() <= POOL_FILE::kLongestContent) {
        count = UnlessInterrupted([&] { return read(descriptor, block, sizeof block); });
        if (count > 0) content.append(block, static_cast<std::size_t>(count));
    }
    const int error = count < 0 ? errno : count > 0 ? EFBIG : 0;
    close(descriptor);
    return error;
}

/// Whether the pool is the beginning of the complete content. After a power failure a block that was not on the disk
/// yet reads as zeros, which no pool holds.
bool IsCutOff(const std::string& pool, const std::string& complete) {
    if (pool.size() > complete.size() || pool == complete) return false;
    for (std::size_t i = 0; i < pool.size(); ++i)
        if (pool[i] != complete[i] && pool[i] != '\0') return false;
    return true;
}

void WarnOnce(const std::string& path, const char* what) {
    static std::mutex mutex;
    static std::set<std::string> named;
    const std::lock_guard lock(mutex);
    if (named.insert(path).second) Log().Message(LOGGING_LEVEL::WARNING, "%s %s", path.c_str(), what);
}

void TellRecovery(const POOL_FILE& pool, std::size_t bytes, const std::string& path, std::size_t complete_bytes) {
    const char* const name = pool.Name().c_str();
    Log().Message(LOGGING_LEVEL::ALARM,
                  "pool %s is cut off: it has %zu bytes, %s holds all %zu of an update that was interrupted", name,
                  bytes, path.c_str(), complete_bytes);
    Log().Message(LOGGING_LEVEL::ALARM,
                  "to recover, while no other run works in this folder: cat '%s' > '%s' && rm -f '%s'", path.c_str(),
                  name, path.c_str());
    if (bytes == 0)
        Log().Message(
            LOGGING_LEVEL::ALARM,
            "but compare the keys first: if %s is the content of another pool of the folder, recover that one",
            path.c_str());
}

/// Whether it is long enough to be the complete content.
bool IsAtLeastAsLong(const std::string& path, const std::string& content) {
    struct stat status {};
    return lstat(path.c_str(), &status) != 0 || static_cast<std::size_t>(status.st_size) >= content.size();
}

[[noreturn]] void RefuseUnread(const POOL_FILE& pool, const std::string& path, const char* reason) {
    Log().Message(LOGGING_LEVEL::ALARM,
                  "%s, left by an update that was interrupted, can not be read: %s: whether pool %s is cut off can not "
                  "be told",
                  path.c_str(), reason, pool.Name().c_str());
    throw CORRUPTED_PARAMETER_POOL();
}

/// @return whether the pool is the beginning of this one
bool IsOfCutOffPool(const POOL_FILE& pool, const std::string& content, const std::string& path) {
    std::string complete;
    const int error = ReadFile(path, complete);
    if (error == ENOENT) return false;  // removed meanwhile
    if (error != 0 && !pool.IsNew() && IsAtLeastAsLong(path, content)) RefuseUnread(pool, path, std::strerror(error));
    if (!pool.IsNew() && IsCutOff(content, complete)) {
        TellRecovery(pool, content.size(), path, complete.size());
        return true;
    }
    WarnOnce(path, "holds the content of a pool whose update was interrupted: see \"Recovery\" in docs/pools.md");
    return false;
}

}  // namespace

void CheckLeftOvers(const POOL_FILE& pool, const std::string& content) {
    struct stat status {};
    DIR* const folder = opendir(pool.Directory().c_str());
    if (folder == nullptr) {
        if (errno != EACCES)
            Log().Message(LOGGING_LEVEL::WARNING,
                          "folder %s can not be searched for what an interrupted update left: %s",
                          pool.Directory().c_str(), std::strerror(errno));
        return;
    }
    std::map<std::string, KIND> found;
    if (fstat(pool.Descriptor(), &status) == 0) {
        while (const dirent* const entry = readdir(folder)) {
            const KIND kind = KindOf(dirfd(folder), entry->d_name, status.st_uid);
            if (kind != KIND::NONE) found[pool.Directory() + "/" + entry->d_name] = kind;
        }
    }
    closedir(folder);
    bool is_cut_off = false;
    for (const auto& [path, kind] : found) {
        if (kind == KIND::COMPLETE && IsOfCutOffPool(pool, content, path)) is_cut_off = true;
        if (kind == KIND::UNFINISHED)
            WarnOnce(path, "is an update that was interrupted before it changed its pool: remove it");
    }
    if (is_cut_off) throw CORRUPTED_PARAMETER_POOL();
}
