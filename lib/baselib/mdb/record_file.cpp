#include "lib/baselib/mdb/record_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "lib/baselib/logging/unless_interrupted.h"

namespace {

constexpr const char* kCanNotRead = "MDB: can not read from mdb-file";

}  // namespace

FILE_STATE FileStateOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return {true, status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool RECORD_FILE::Open(const std::string& path, bool create_and_write) {
    // O_NONBLOCK: a pipe by that name must not hold the program.
    const int flags = (create_and_write ? O_RDWR | O_CREAT : O_RDONLY) | O_NONBLOCK | O_CLOEXEC;
    descriptor_ = UnlessInterrupted([&] { return open(path.c_str(), flags, 0666); });
    if (descriptor_ < 0) return false;
    struct stat status {};
    if (fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode)) return true;
    Close();
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return false;
}

void RECORD_FILE::Close() {
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
    position_ = 0;
    buffer_size_ = 0;
}

long long RECORD_FILE::Size() const {
    struct stat status {};
    if (fstat(descriptor_, &status) != 0) throw kCanNotRead;  // 0 would be the end of the file
    return status.st_size;
}

/// Makes the buffer hold the byte at the position. @return false at the end of the file
bool RECORD_FILE::FillBuffer() {
    if (position_ >= buffer_start_ && position_ < buffer_start_ + buffer_size_) return true;
    buffer_size_ = 0;
    buffer_start_ = position_;
    const ssize_t count = UnlessInterrupted([this] { return pread(descriptor_, buffer_, sizeof buffer_, position_); });
    if (count < 0) throw kCanNotRead;
    buffer_size_ = count;
    return count > 0;
}

bool RECORD_FILE::ReadLine(std::string& line) {
    line.clear();
    line_ended_ = false;
    bool any = false;
    while (!line_ended_ && FillBuffer()) {
        any = true;
        const char* const start = buffer_ + (position_ - buffer_start_);
        const auto available = static_cast<size_t>(buffer_start_ + buffer_size_ - position_);
        const auto* const end = static_cast<const char*>(std::memchr(start, '\n', available));
        const size_t length = end != nullptr ? static_cast<size_t>(end - start) : available;
        line_ended_ = end != nullptr;
        line.append(start, length);
        position_ += static_cast<long long>(length) + (line_ended_ ? 1 : 0);
        if (line.size() > kMaxLineLength) throw "MDB: line too long in mdb-file";
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return any;
}

void RECORD_FILE::SeekLineStart(long long position) {
    Seek(position);
    if (position == 0) return;
    Seek(position - 1);  // the line's own start, when the byte before it ends a line
    std::string rest;
    static_cast<void>(ReadLine(rest));
}

bool RECORD_FILE::Append(const std::string& text) {
    buffer_size_ = 0;
    const long long old_size = Size();
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = pwrite(descriptor_, text.data() + written, text.size() - written,
                                     old_size + static_cast<long long>(written));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            const int reason = errno;
            if (ftruncate(descriptor_, old_size) != 0) return false;
            errno = reason;
            return false;
        }
        written += static_cast<size_t>(count);
    }
    return true;
}
