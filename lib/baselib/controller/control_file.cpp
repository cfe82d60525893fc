#include "lib/baselib/controller/control_file.h"

#include <sys/stat.h>

namespace {

constexpr int kLongestLine = 1024;

/// Copies at most 1 MiB: a device such as /dev/zero has no end.
FILE* TemporaryCopy(FILE* source) {
    constexpr int kLongestCopy = 1 << 20;
    FILE* const copy = std::tmpfile();
    if (copy == nullptr) return nullptr;
    int c = 0;
    for (int count = 0; count < kLongestCopy && (c = std::fgetc(source)) != EOF; ++count) std::fputc(c, copy);
    std::rewind(copy);
    return copy;
}

}  // namespace

bool CONTROL_FILE::Open(const std::string& path) {
    stream_.reset(std::fopen(path.c_str(), "re"));
    if (stream_ == nullptr) return false;
    struct stat status = {};
    if (fstat(fileno(stream_.get()), &status) != 0 || S_ISDIR(status.st_mode))
        stream_.reset();
    else if (!S_ISREG(status.st_mode))
        stream_.reset(TemporaryCopy(stream_.get()));
    return IsOpen();
}

std::optional<CONTROL_FILE::ENTRY> CONTROL_FILE::NextEntry() {
    char line[kLongestLine + 1];
    if (std::fgets(line, sizeof line, stream_.get()) == nullptr) return std::nullopt;
    char key[kLongestLine + 1] = "";
    char value[kLongestLine + 1] = "";
    static_assert(kLongestLine == 1024, "the widths below");
    (void)std::sscanf(line, "%1024s %1024s", key, value);
    return ENTRY{key, value};
}

void CONTROL_FILE::Rewind() {
    std::rewind(stream_.get());
}

std::vector<std::string> CONTROL_FILE::Keys() {
    std::vector<std::string> keys;
    if (!IsOpen()) return keys;
    const long position = std::ftell(stream_.get());
    Rewind();
    while (const std::optional<ENTRY> entry = NextEntry())
        if (!entry->key.empty()) keys.push_back(entry->key);
    std::fseek(stream_.get(), position, SEEK_SET);
    return keys;
}
