#include "lib/baselib/pool/pool_replacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/logging/unless_interrupted.h"
#include "lib/baselib/pool/pool_errors.h"

namespace {

/// A system call that did not do its work.
struct STEP_FAILED {
    const char* step;
    int error;
};

void Require(bool done, const char* step) {
    if (!done) throw STEP_FAILED{step, errno};
}

void LogAlarm(const char* text, const std::string& file_name = "") {
    Log().Message(LOGGING_LEVEL::ALARM, "%s%s", text, file_name.c_str());
}

void LogSystemError(const STEP_FAILED& failure) {
    Log().Message(LOGGING_LEVEL::ALARM, "%s (%s)", std::strerror(failure.error), failure.step);
}

[[noreturn]] void FailUpdate(const POOL_FILE& pool, const STEP_FAILED& failure) {
    LogAlarm("can not update pool ", pool.Name());
    LogSystemError(failure);
    throw ERROR_PARAMETER_POOL();
}

bool IsMissingFeature(int error) {
    return error == EINVAL || error == EPERM || error == ENOSYS || error == EOPNOTSUPP;
}

void FlushFolder(const std::string& directory) {
    const int folder = UnlessInterrupted([&] { return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    const bool flushed = folder >= 0 && UnlessInterrupted([=] { return fsync(folder); }) == 0;
    const STEP_FAILED failure{"flushing the folder", errno};
    const bool unreadable = folder < 0 && failure.error == EACCES;  // files can be made in it all the same
    if (folder >= 0) close(folder);
    if (flushed) return;
    if (!unreadable && !IsMissingFeature(failure.error)) throw failure;
    WarnOnceOfFileSystem("folder " + directory + " can not be flushed to disk (" + std::strerror(failure.error) +
                         "): a power failure during the update of a pool may lose its temporary file");
}

void WriteAll(int descriptor, const std::string& content) {
    for (std::size_t done = 0; done < content.size();) {
        const ssize_t count =
            pwrite(descriptor, content.data() + done, content.size() - done, static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) errno = ENOSPC;
        Require(count > 0, "writing");
        done += static_cast<std::size_t>(count);
    }
}

/// The names of temporaries that hold nothing but copies. Two pools with their old contents need four places.
std::array<std::atomic<const char*>, 8> unmarked{};
static_assert(std::atomic<const char*>::is_always_lock_free);

void Exchange(const char* present, const char* next) noexcept {
    for (auto& place : unmarked) {
        const char* expected = present;
        if (place.compare_exchange_strong(expected, next)) return;
    }
}

}  // namespace

void RemoveUnmarkedTemporaries() noexcept {
    for (const auto& place : unmarked)
        if (const char* const name = place) unlink(name);
}

POOL_REPLACEMENT::POOL_REPLACEMENT(const POOL_FILE& pool, std::string content)
    : pool_(pool), content_(std::move(content)), temporary_name_(pool.Directory() + "/pool_XXXXXX") {}

POOL_REPLACEMENT::~POOL_REPLACEMENT() {
    Exchange(temporary_name_.c_str(), nullptr);
    if (temporary_ >= 0) close(temporary_);
}

void POOL_REPLACEMENT::Prepare() {
    try {
        CreateTemporary();
        WriteTemporary();
        ReadBack();
        return;
    } catch (const STEP_FAILED& failure) {
        LogSystemError(failure);
    }
    LogAlarm("can not update parameter pool: ", pool_.Name());
    LogAlarm("the corrupted parameter pool is:",
             temporary_ >= 0 ? temporary_name_ : " none, no file can be made in " + pool_.Directory());
    LogAlarm("the original parameter pool is NOT CHANGED !!");
    Exchange(temporary_name_.c_str(), nullptr);
    temporary_name_.clear();  // the file stays
    throw CORRUPTED_PARAMETER_POOL();
}

void POOL_REPLACEMENT::CreateTemporary() {
    Exchange(nullptr, temporary_name_.c_str());  // before it is there: the name is filled in place
    temporary_ = UnlessInterrupted([this] {
        temporary_name_.replace(temporary_name_.size() - 6, 6, "XXXXXX");
        return mkostemp(temporary_name_.data(), O_CLOEXEC);
    });
    Require(temporary_ >= 0, "creating the temporary file");
    // Nobody else knows the file, so only a file system without locks refuses; the pool's own lock told about that.
    (void)flock(temporary_, LOCK_EX | LOCK_NB);
}

void POOL_REPLACEMENT::WriteTemporary() {
    WriteAll(temporary_, content_);
    Require(UnlessInterrupted([this] { return fsync(temporary_); }) == 0, "flushing the temporary file");
    FlushFolder(pool_.Directory());
}

/// What the pool will receive is what the disk gave back.
void POOL_REPLACEMENT::ReadBack() {
    std::string content(content_.size() + 1, '\0');
    std::size_t size = 0;
    const int reading = UnlessInterrupted([this] { return open(temporary_name_.c_str(), O_RDONLY | O_CLOEXEC); });
    ssize_t count = reading < 0 ? -1 : 1;
    while (count > 0 && size < content.size()) {
        count = read(reading, content.data() + size, content.size() - size);
        if (count > 0) size += static_cast<std::size_t>(count);
        if (count < 0 && errno == EINTR) count = 1;
    }
    const STEP_FAILED failure{"reading the temporary file again", errno};
    if (reading >= 0) close(reading);
    content.resize(size);
    if (count >= 0 && content == content_) return;
    LogAlarm("Error opening file ", temporary_name_);
    if (count < 0) LogSystemError(failure);
    Remove();
    throw ERROR_I_O();
}

void POOL_REPLACEMENT::MarkComplete() {
    Exchange(temporary_name_.c_str(), nullptr);
    if (fchmod(temporary_, 0400) == 0)
        return Require(UnlessInterrupted([this] { return fsync(temporary_); }) == 0, "flushing the mode");
    Require(IsMissingFeature(errno), "changing the mode");
    WarnOnceOfFileSystem("the mode of files in " + pool_.Directory() + " can not be changed (" + std::strerror(errno) +
                         "): what an interrupted update of a pool leaves is not recognised");
}

void POOL_REPLACEMENT::Announce() const {
    Log().Message(LOGGING_LEVEL::DEBUG, "copy %s to %s", temporary_name_.c_str(), pool_.Name().c_str());
}

void POOL_REPLACEMENT::CopyIntoPool() {
    try {
        MarkComplete();
    } catch (const STEP_FAILED& failure) {
        FailUpdate(pool_, failure);
    }
    Copy();
}

void POOL_REPLACEMENT::PutBack() {
    try {
        MarkComplete();
    } catch (...) {  // no mark, or no memory to tell of it
    }
    Copy();
}

void POOL_REPLACEMENT::Copy() {
    try {
        Require(UnlessInterrupted([this] { return ftruncate(pool_.Descriptor(), 0); }) == 0, "truncating the pool");
        has_touched_pool_ = true;
        WriteAll(pool_.Descriptor(), content_);
        Require(UnlessInterrupted([this] { return fsync(pool_.Descriptor()); }) == 0, "flushing the pool");
    } catch (const STEP_FAILED& failure) {
        FailUpdate(pool_, failure);
    }
}

void POOL_REPLACEMENT::LeaveToRecovery() {
    Exchange(temporary_name_.c_str(), nullptr);
    std::string name;
    name.swap(temporary_name_);  // the file stays
    const bool marked = fchmod(temporary_, 0400) == 0;
    // Without the mark an empty pool would be no better known as damaged than what it holds now.
    const bool emptied = marked && UnlessInterrupted([this] { return ftruncate(pool_.Descriptor(), 0); }) == 0;
    if (!marked || !emptied) LogAlarm("the next run will not know that this pool is damaged: ", pool_.Name());
    LogAlarm("see \"Recovery\" in docs/pools.md: a complete content of the pool is in ", name);
}

void POOL_REPLACEMENT::Remove() {
    if (temporary_ < 0 || temporary_name_.empty()) return;
    if (UnlessInterrupted([this] { return unlink(temporary_name_.c_str()); }) != 0 && errno != ENOENT)
        Log().Message(LOGGING_LEVEL::WARNING, "temporary file %s of pool %s can not be removed: %s",
                      temporary_name_.c_str(), pool_.Name().c_str(), std::strerror(errno));
    Exchange(temporary_name_.c_str(), nullptr);
    temporary_name_.clear();
}
