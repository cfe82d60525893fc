#include "companions/input_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "companions/companion_error.h"

void RequireRegularFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) throw COMPANION_ERROR(path + ": can not open: " + std::strerror(errno));
    if (!S_ISREG(status.st_mode)) throw COMPANION_ERROR(path + ": is no regular file");
}

std::string ReadWholeFile(const std::string& path, std::size_t limit_bytes) {
    RequireRegularFile(path);
    std::ifstream file(path, std::ios::binary);
    if (!file) throw COMPANION_ERROR(path + ": can not open: " + std::strerror(errno));
    std::string content;
    char buffer[65536];
    while (file.read(buffer, sizeof buffer) || file.gcount() > 0) {
        content.append(buffer, static_cast<std::size_t>(file.gcount()));
        if (content.size() > limit_bytes)
            throw COMPANION_ERROR(path + ": has more than " + std::to_string(limit_bytes) +
                                  " bytes, no file of this kind has");
    }
    if (file.bad()) throw COMPANION_ERROR(path + ": can not read: " + std::strerror(errno));
    return content;
}
