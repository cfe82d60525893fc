#include "lib/baselib/controller/control_file.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "lib/baselib/logging/unless_interrupted.h"

namespace {

constexpr int kLongestLine = 1024;

/// Waits until a pipe has something to say. @return 0, or the reason why it has not
int WaitForInput(int descriptor, int longest_silence_s) {
    pollfd input = {descriptor, POLLIN, 0};
    const int count = UnlessInterrupted([&] { return poll(&input, 1, longest_silence_s * 1000); });
    return count > 0 ? 0 : count == 0 ? ETIMEDOUT : errno;
}

/// Reads to the end, at most kLongestFile. @return 0, or the error's number
int ReadAll(int descriptor, int longest_silence_s, std::string& content) {
    char block[65536];
    for (;;) {
        if (const int error = WaitForInput(descriptor, longest_silence_s); error != 0) return error;
        const ssize_t count = read(descriptor, block, sizeof block);
        if (count == 0) return 0;
        if (count < 0 && errno != EINTR && errno != EAGAIN) return errno;
        if (count < 0) continue;
        content.append(block, static_cast<std::size_t>(count));
        if (content.size() > CONTROL_FILE::kLongestFile) return EFBIG;
    }
}

std::string ProblemText(int error, int longest_silence_s) {
    if (error == ETIMEDOUT) return "nobody wrote into it for " + std::to_string(longest_silence_s) + " s";
    if (error == EFBIG) return "it has more than " + std::to_string(CONTROL_FILE::kLongestFile) + " bytes";
    return std::strerror(error);
}

}  // namespace

bool CONTROL_FILE::Open(const std::string& path, int longest_silence_s) {
    Close();
    problem_.clear();
    // O_NONBLOCK: opening a named pipe must not wait for its writer; reading waits, for a bounded time.
    const int descriptor = UnlessInterrupted([&] { return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); });
    const int error = descriptor < 0 ? errno : ReadAll(descriptor, longest_silence_s, content_);
    if (descriptor >= 0) close(descriptor);
    is_open_ = error == 0;
    const bool is_missing = descriptor < 0 && (error == ENOENT || error == ENOTDIR);
    if (!is_open_ && !is_missing) problem_ = ProblemText(error, longest_silence_s);
    return is_open_;
}

void CONTROL_FILE::Close() {
    is_open_ = false;
    content_.clear();
    position_ = 0;
}

std::optional<CONTROL_FILE::ENTRY> CONTROL_FILE::NextEntry() {
    if (position_ >= content_.size()) return std::nullopt;
    std::string line = content_.substr(position_, kLongestLine);
    if (const std::size_t end = line.find('\n'); end != std::string::npos) line.resize(end + 1);
    position_ += line.size();
    char key[kLongestLine + 1] = "";
    char value[kLongestLine + 1] = "";
    static_assert(kLongestLine == 1024, "the widths below");
    (void)std::sscanf(line.c_str(), "%1024s %1024s", key, value);
    return ENTRY{key, value};
}

std::vector<CONTROL_FILE::ENTRY> CONTROL_FILE::Entries() const {
    std::vector<ENTRY> entries;
    CONTROL_FILE from_the_start = *this;
    from_the_start.Rewind();
    while (const std::optional<ENTRY> entry = from_the_start.NextEntry()) entries.push_back(*entry);
    return entries;
}

std::vector<std::string> CONTROL_FILE::Keys() const {
    std::vector<std::string> keys;
    for (const ENTRY& entry : Entries())
        if (!entry.key.empty()) keys.push_back(entry.key);
    return keys;
}

std::vector<std::string> CONTROL_FILE::ValuesOf(const std::string& key) const {
    std::vector<std::string> values;
    for (const ENTRY& entry : Entries())
        if (entry.key == key) values.push_back(entry.value);
    return values;
}
