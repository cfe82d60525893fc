#include "lib/baselib/image/output_path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

namespace {

constexpr int kMostLinks = 40;  // as the system's own limit

std::string TargetOf(const std::string& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    return length < 0 ? std::string() : std::string(target.data(), static_cast<std::size_t>(length));
}

}  // namespace

FOLDER_AND_NAME::FOLDER_AND_NAME(const std::string& path)
    : folder(path.substr(0, path.rfind('/') + 1)), name(path.substr(path.rfind('/') + 1)) {}

std::string BehindLinks(const std::string& path) {
    std::string here = path;
    struct stat status {};
    // What such a link holds need not be a path: /dev/stdout leads to "pipe:[1234]".
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return path;
    for (int i = 0; i < kMostLinks; ++i) {
        if (lstat(here.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return here;
        std::string target = TargetOf(here);
        if (target.empty()) return target;
        here = target.front() == '/' ? target : FOLDER_AND_NAME(here).PathOf(target);
    }
    errno = ELOOP;
    return {};
}
