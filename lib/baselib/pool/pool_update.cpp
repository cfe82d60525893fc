#include "lib/baselib/pool/pool_update.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio_ext.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/entry_scanner.h"
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

bool CloseStream(FILE*& stream) {
    FILE* const open = stream;
    stream = nullptr;
    return open == nullptr || std::fclose(open) == 0;
}

void FlushFolder(const std::string& directory) {
    const int folder = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    Require(folder >= 0, "opening the folder");
    const bool flushed = fsync(folder) == 0;
    const int error = errno;
    const bool closed = close(folder) == 0;
    if (!flushed) errno = error;
    Require(flushed && closed, "flushing the folder");
}

void Write(FILE* stream, const std::string& text) {
    Require(std::fwrite(text.data(), 1, text.size(), stream) == text.size(), "writing");
}

/// Holds back every signal that can wait: one that ended the process between truncation and copy would leave an empty
/// pool. What a broken program raises itself (SIGSEGV and the like) is not held back by a mask, nor is SIGKILL.
class SIGNALS_HELD_BACK {
  public:
    SIGNALS_HELD_BACK() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~SIGNALS_HELD_BACK() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SIGNALS_HELD_BACK(const SIGNALS_HELD_BACK&) = delete;
    SIGNALS_HELD_BACK& operator=(const SIGNALS_HELD_BACK&) = delete;

  private:
    sigset_t before_{};
};

}  // namespace

POOL_UPDATE::POOL_UPDATE(FILE* pool, std::string pool_name, const std::string& directory)
    : pool_(pool),
      pool_name_(std::move(pool_name)),
      directory_(directory),
      temporary_name_(directory + "/pool_XXXXXX") {}

POOL_UPDATE::~POOL_UPDATE() {
    CloseStream(writing_);
    CloseStream(reading_);
    if (lock_ >= 0) close(lock_);
    flock(fileno(pool_), LOCK_UN);
}

void POOL_UPDATE::Run(const PARAMETER_POOL_LIST& items) {
    LockPool();
    BuildTemporary(items);
    const SIGNALS_HELD_BACK held_back;
    TruncatePool();
    CopyBack();
    RemoveTemporary();
}

void POOL_UPDATE::LockPool() {
    constexpr int kAttempts = 200;
    constexpr useconds_t kPauseMicroseconds = 50'000;
    for (int attempt = 1; flock(fileno(pool_), LOCK_EX | LOCK_NB) != 0; ++attempt) {
        if ((errno == EWOULDBLOCK || errno == EINTR) && attempt < kAttempts) {
            usleep(kPauseMicroseconds);
            continue;
        }
        const STEP_FAILED failure{"locking the pool", errno};
        LogAlarm("can not update pool ", pool_name_);
        LogSystemError(failure);
        throw ERROR_PARAMETER_POOL();
    }
}

void POOL_UPDATE::BuildTemporary(PARAMETER_POOL_LIST items) {
    try {
        CreateTemporary();
        WriteContent(std::move(items));
        FlushTemporary();
        Log().Message(LOGGING_LEVEL::DEBUG, "copy %s to %s", temporary_name_.c_str(), pool_name_.c_str());
        OpenForReading();
        Require(fchmod(lock_, 0400) == 0, "changing the mode");
        Require(fsync(lock_) == 0, "flushing the mode");
        return;
    } catch (const STEP_FAILED& failure) {
        LogSystemError(failure);
    } catch (const ERROR_CAN_NOT_READ_FILE&) {  // of the pool; logged where it occurred
    } catch (const std::bad_alloc&) {
        LogAlarm("not enough memory for the update");
    }
    if (lock_ >= 0 && fchmod(lock_, 0600) != 0) LogAlarm("can not change the mode of ", temporary_name_);
    LogAlarm("can not update parameter pool: ", pool_name_);
    LogAlarm("the corrupted parameter pool is:", temporary_name_);
    LogAlarm("the original parameter pool is NOT CHANGED !!");
    throw CORRUPTED_PARAMETER_POOL();
}

void POOL_UPDATE::CreateTemporary() {
    lock_ = mkostemp(temporary_name_.data(), O_CLOEXEC);
    Require(lock_ >= 0, "creating the temporary file");
    Require(flock(lock_, LOCK_EX | LOCK_NB) == 0, "locking the temporary file");
    const int descriptor = fcntl(lock_, F_DUPFD_CLOEXEC, 0);
    Require(descriptor >= 0, "duplicating a descriptor");
    writing_ = fdopen(descriptor, "w");
    Require(writing_ != nullptr, "opening the temporary file");
}

void POOL_UPDATE::WriteContent(PARAMETER_POOL_LIST items) {
    LINE_READER reader;
    ENTRY_SCANNER scanner;
    std::string comments_above;  // those of the item may stand there from the last update
    char last = '\n';
    bool is_replaced = false;
    reader.Start(pool_, pool_name_, 0, 1);
    while (reader.Next()) {
        const POOL_LINE kind = scanner.Classify(reader);
        if (kind == POOL_LINE::OUTSIDE) is_replaced = false;
        if (kind == POOL_LINE::ENTRY) {
            const auto item = items.Take(KeyOfLine(reader.Line()));
            is_replaced = item.has_value();
            if (is_replaced) {
                const std::string comments = item->CommentText();
                Write(writing_, (comments_above.ends_with(comments) ? "" : comments) + item->EntryText());
                last = '\n';
            }
        }
        if (reader.Line().front() != '#') comments_above.clear();
        if (is_replaced) continue;
        if (reader.Line().front() == '#') comments_above += reader.Line();
        Write(writing_, reader.Line());
        last = reader.Line().back();
    }
    if (!items.IsEmpty() && last != '\n' && last != '\r') Write(writing_, "\n");
    for (const PARAMETER_POOL_ITEM& item : items) Write(writing_, item.CommentText() + item.EntryText());
}

void POOL_UPDATE::FlushTemporary() {
    Require(std::fflush(writing_) == 0, "writing");
    Require(fsync(lock_) == 0, "flushing the temporary file");
    FlushFolder(directory_);
    Require(CloseStream(writing_), "closing the temporary file");
}

void POOL_UPDATE::OpenForReading() {
    reading_ = std::fopen(temporary_name_.c_str(), "re");
    if (reading_ != nullptr) return;
    const STEP_FAILED failure{"opening", errno};
    LogAlarm("Error opening file ", temporary_name_);
    LogSystemError(failure);
    unlink(temporary_name_.c_str());
    throw ERROR_I_O();
}

void POOL_UPDATE::TruncatePool() {
    if (std::fflush(pool_) == 0 && fseeko(pool_, 0, SEEK_SET) == 0 && ftruncate(fileno(pool_), 0) == 0) {
        has_truncated_pool_ = true;
        return;
    }
    const STEP_FAILED failure{"truncating the pool", errno};
    unlink(temporary_name_.c_str());
    LogAlarm("can not update pool ", pool_name_);
    LogSystemError(failure);
    throw ERROR_PARAMETER_POOL();
}

void POOL_UPDATE::CopyBack() {
    try {
        std::array<char, 65536> block;
        std::size_t count = 0;
        while ((count = std::fread(block.data(), 1, block.size(), reading_)) > 0) {
            Require(std::fwrite(block.data(), 1, count, pool_) == count, "writing");
        }
        Require(std::ferror(reading_) == 0, "reading the temporary file");
        Require(std::fflush(pool_) == 0, "writing");
        Require(fsync(fileno(pool_)) == 0, "flushing the pool");
    } catch (const STEP_FAILED& failure) {
        __fpurge(pool_);  // else a later flush would write the rest somewhere
        LogAlarm("can not update pool ", pool_name_);
        LogSystemError(failure);
        LogAlarm("see \"Recovery\" in docs/pools.md: the complete new content of the pool is in ", temporary_name_);
        throw ERROR_PARAMETER_POOL();
    }
}

void POOL_UPDATE::RemoveTemporary() {
    try {
        Require(CloseStream(reading_), "closing the temporary file");
        Require(unlink(temporary_name_.c_str()) == 0, "removing");
        Require(close(std::exchange(lock_, -1)) == 0, "closing the temporary file");
        has_truncated_pool_ = false;
    } catch (const STEP_FAILED& failure) {
        has_truncated_pool_ = false;  // it is complete again
        Log().Message(LOGGING_LEVEL::ALARM, "pool %s is updated, but its temporary file %s could not be removed",
                      pool_name_.c_str(), temporary_name_.c_str());
        LogSystemError(failure);
        throw ERROR_PARAMETER_POOL();
    }
}
