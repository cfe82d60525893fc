#include "lib/baselib/pool/pool_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <set>
#include <utility>

#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/logging/unless_interrupted.h"
#include "lib/baselib/pool/entry_scanner.h"
#include "lib/baselib/pool/pool_errors.h"
#include "lib/baselib/pool/pool_type.h"

namespace {

/// So much of a file must tell whether it is a pool.
constexpr std::size_t kFirstBlock = 65536;
constexpr std::size_t kLaterBlock = std::size_t{1} << 20;

std::string DirectoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

int OpenDescriptor(const std::string& path, int flags) {
    return UnlessInterrupted([&] { return open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666); });
}

bool HasNoLocks(int error) {
    return error == ENOSYS || error == ENOLCK || error == EOPNOTSUPP || error == EINVAL;
}

void RefuseWhatIsNoFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) return;
    if (S_ISDIR(status.st_mode)) {
        Log() << LOGGING_LEVEL::ALARM << "parameter file " << path << " is a directory!\n";
    } else {  // a pipe would block the first lookup, a device cannot be updated
        Log().Message(LOGGING_LEVEL::ALARM, "parameter file %s is no regular file", path.c_str());
    }
    throw CAN_NOT_OPEN_POOL();
}

/// A raster or another large file under a pool's name, told by its beginning: neither an entry with a type tag, nor
/// comments and blank lines only. Small files without a zero byte get the benefit of the doubt.
bool IsClearlyNoPool(const std::string& content) {
    const std::string beginning = content.substr(0, kFirstBlock);
    if (beginning.size() < kFirstBlock && beginning.find('\0') == std::string::npos) return false;
    LINE_READER reader;
    ENTRY_SCANNER scanner;
    bool has_other_lines = false;
    for (reader.Start(beginning, 0, 1); reader.Next();) {
        if (scanner.Classify(reader) != POOL_LINE::ENTRY) continue;
        std::string tag;
        if (reader.Token(tag) && reader.Token(tag) && PoolTypeNumber(tag) != 0) return false;
        has_other_lines = true;
    }
    return has_other_lines;
}

/// Disks leave zeros where content was lost. More of them than a line takes: the rest need not be read.
bool EndsWithZeros(const std::string& content) {
    return content.size() > kPoolLineLength &&
           content.find_first_not_of('\0', content.size() - kPoolLineLength - 1) == std::string::npos;
}

/// @return 0 without one; comments may hold what they like
long long LineWithZeroByte(const std::string& content) {
    LINE_READER reader;
    if (content.find('\0') == std::string::npos) return 0;
    for (reader.Start(content, 0, 1); reader.Next();)
        if (reader.Line().front() != '#' && reader.Line().find('\0') != std::string_view::npos)
            return reader.LineNumber();
    return 0;
}

}  // namespace

void WarnOnceOfFileSystem(const std::string& text) {
    static std::mutex mutex;
    static std::set<std::string> told;
    const std::lock_guard lock(mutex);
    if (told.insert(text).second) Log().Message(LOGGING_LEVEL::WARNING, "%s", text.c_str());
}

POOL_FILE::POOL_FILE(const std::string& path) : name_(path), directory_(DirectoryOf(path)) {
    RefuseWhatIsNoFile(path);
    descriptor_ = OpenDescriptor(path, O_RDWR);
    if (descriptor_ < 0) {
        // Exclusive: when the first attempt fails for a passing reason only, an existing pool must not be emptied.
        descriptor_ = OpenDescriptor(path, O_RDWR | O_CREAT | O_EXCL);
        is_new_ = descriptor_ >= 0;
    }
    if (descriptor_ < 0) {
        descriptor_ = OpenDescriptor(path, O_RDONLY);
        writable_ = false;
    }
    struct stat status {};
    if (descriptor_ >= 0 && fstat(descriptor_, &status) == 0) {
        identity_ = {status.st_dev, status.st_ino};
        return;
    }
    const int error = errno;
    Close();
    Log().Message(LOGGING_LEVEL::ALARM, "can not open parameter file %s", path.c_str());
    LogAndThrow<CAN_NOT_OPEN_POOL>("%s", std::strerror(error));
}

POOL_FILE& POOL_FILE::operator=(POOL_FILE&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(identity_, other.identity_);
    std::swap(writable_, other.writable_);
    std::swap(is_new_, other.is_new_);
    name_.swap(other.name_);
    directory_.swap(other.directory_);
    return *this;
}

void POOL_FILE::Close() {
    if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
}

bool POOL_FILE::IsReplaced() const {
    struct stat named {};
    return stat(name_.c_str(), &named) == 0 && IDENTITY{named.st_dev, named.st_ino} != identity_;
}

void POOL_FILE::Lock(LOCK kind, int longest_wait_s) const {
    constexpr useconds_t kPauseMicroseconds = 50'000;
    constexpr int kAttemptsPerSecond = 20;
    const int operation = (kind == LOCK::SHARED ? LOCK_SH : LOCK_EX) | LOCK_NB;
    for (int waited = 0; flock(descriptor_, operation) != 0;) {
        const int error = errno;
        if (error == EINTR) continue;
        if (HasNoLocks(error)) {
            return WarnOnceOfFileSystem("no locks for pools in " + directory_ + " (" + std::strerror(error) +
                                        "): a run that changes a pool at the same time is not noticed");
        }
        if (error == EWOULDBLOCK && waited < longest_wait_s * kAttemptsPerSecond) {
            if (waited++ == 0)
                Log().Message(LOGGING_LEVEL::INFO,
                              "waiting for pool %s, which another process has locked (at most %d s)", name_.c_str(),
                              longest_wait_s);
            usleep(kPauseMicroseconds);
            continue;
        }
        LogAndThrow<ERROR_PARAMETER_POOL>(
            "can not lock pool %s: %s", name_.c_str(),
            error == EWOULDBLOCK ? "another process keeps it locked" : std::strerror(error));
    }
}

void POOL_FILE::Unlock() const {
    if (IsOpen()) flock(descriptor_, LOCK_UN);
}

void POOL_FILE::Refuse(const std::string& reason) const {
    LogAndThrow<CAN_NOT_OPEN_POOL>("parameter file %s is no parameter pool: %s", name_.c_str(), reason.c_str());
}

/// @return whether the file goes on
bool POOL_FILE::ReadBlock(std::string& content, std::size_t bytes) const {
    const std::size_t size = content.size();
    content.resize(size + bytes);
    const ssize_t count =
        UnlessInterrupted([&] { return pread(descriptor_, content.data() + size, bytes, static_cast<off_t>(size)); });
    if (count < 0) {
        LogAndThrow<ERROR_CAN_NOT_READ_FILE>("can not read parameter file %s: %s", name_.c_str(), std::strerror(errno));
    }
    content.resize(size + static_cast<std::size_t>(count));
    return count > 0;
}

std::string POOL_FILE::Content() const {
    struct stat status {};
    const bool is_known = fstat(descriptor_, &status) == 0;
    std::string content;
    bool goes_on = true;
    while (goes_on && content.size() < kFirstBlock) goes_on = ReadBlock(content, kFirstBlock - content.size());
    if (IsClearlyNoPool(content)) return content;
    if (is_known && goes_on && static_cast<std::size_t>(status.st_size) < kLongestContent)
        content.reserve(static_cast<std::size_t>(status.st_size) + 1);
    while (goes_on && !EndsWithZeros(content)) {
        if (content.size() > kLongestContent) Refuse("more than " + std::to_string(kLongestContent) + " bytes");
        goes_on = ReadBlock(content, kLaterBlock);
    }
    return content;
}

void POOL_FILE::RequirePool(const std::string& content) const {
    if (IsClearlyNoPool(content))
        Refuse("no entry in its first " + std::to_string(std::min(content.size(), kFirstBlock)) + " bytes");
    if (const long long line = LineWithZeroByte(content); line != 0)
        Refuse("a zero byte in line " + std::to_string(line) + ", as disks leave them where content was lost");
}
