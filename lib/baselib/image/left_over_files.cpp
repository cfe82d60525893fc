#include "lib/baselib/image/left_over_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// FNV-1a, 64 bits: a product's name may be as long as a name can be, so that nothing fits around it.
std::uint64_t SumOf(const std::string& name) {
    std::uint64_t sum = 0xcbf29ce484222325;
    for (const char c : name) sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return sum;
}

std::string NamePrefix(const FOLDER_AND_NAME& product) {
    char text[40];
    std::snprintf(text, sizeof text, ".velmora_%016llx_", static_cast<unsigned long long>(SumOf(product.name)));
    return text;
}

std::vector<std::string> NamesWith(const std::string& prefix, const char* folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder), &closedir);
    if (entries == nullptr) return names;
    while (const dirent* const entry = readdir(entries.get())) {
        if (std::strncmp(entry->d_name, prefix.c_str(), prefix.size()) == 0) names.emplace_back(entry->d_name);
    }
    return names;
}

/// A backup belongs to the temporary of its run: while that lives, the temporary or the product itself is locked.
void RemoveUnlessHeld(const std::string& path) {
    const FILE_DESCRIPTOR file(OpenFile(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    const bool locked = file.Get() >= 0 && flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
    if (locked && unlink(path.c_str()) == 0) {
        Log().Message(LOGGING_LEVEL::INFO, "removed %s, left by a run that was killed", path.c_str());
    } else if (errno != EWOULDBLOCK && errno != ENOENT) {
        Log().Message(LOGGING_LEVEL::WARNING, "%s may be left by a run that was killed; it can not be removed: %s",
                      path.c_str(), std::strerror(errno));
    }
}

/// A run that looks for left-overs may have seen the new file before it was locked, and have it locked or removed.
bool IsTaken(int descriptor) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK;  // no locks here: nobody can ask
    struct stat status {};
    // A folder that does not tell is not asked a second time: every further file would be as unknown.
    return fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

}  // namespace

std::string TemporaryPath(const FOLDER_AND_NAME& product, int number) {
    return product.PathOf(NamePrefix(product)) + std::to_string(getpid()) + "_" + std::to_string(number);
}

void RemoveLeftOvers(const FOLDER_AND_NAME& product) {
    for (const std::string& name : NamesWith(NamePrefix(product), product.FolderPath()))
        RemoveUnlessHeld(product.PathOf(name));
}

int MakeTemporary(const FOLDER_AND_NAME& product, mode_t permissions, std::string& path) {
    for (int number = 0;; ++number) {
        path = TemporaryPath(product, number);
        const int descriptor = OpenFile(path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, permissions);
        if (descriptor < 0 && errno == EEXIST) continue;
        if (descriptor < 0 || !IsTaken(descriptor)) return descriptor;
        close(descriptor);
    }
}
