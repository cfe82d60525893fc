#include "lib/baselib/image/product_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/blocked_signals.h"
#include "lib/baselib/image/disk_room.h"
#include "lib/baselib/image/left_over_files.h"
#include "lib/baselib/image/output_path.h"
#include "lib/baselib/image/raster_output.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// One system call copies that much: far more than a call costs, and what a core's second-level cache holds, where the
/// values have just been looked at.
constexpr long long kBytesPerWrite = 256 << 10;

/// In a folder with the sticky bit only the owner of file or folder may put another file in the file's place, and in
/// that of a file that is mounted nobody.
/// @return false with errno set
bool MayReplace(const struct stat& older, const std::string& path) {
    struct stat status {};
    if (stat(FOLDER_AND_NAME(path).FolderPath(), &status) != 0) return false;
    const uid_t user = geteuid();
    const bool sticky = (status.st_mode & S_ISVTX) != 0 && user != 0 && user != status.st_uid && user != older.st_uid;
    errno = EPERM;
    return !sticky && status.st_dev == older.st_dev;
}

/// A pipe without a reader is an error of write(), not the end of the process.
class BLOCKED_PIPE_SIGNAL {
  public:
    BLOCKED_PIPE_SIGNAL() {
        sigemptyset(&pipe_only_);
        sigaddset(&pipe_only_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipe_only_, &before_);
    }
    BLOCKED_PIPE_SIGNAL(const BLOCKED_PIPE_SIGNAL&) = delete;
    BLOCKED_PIPE_SIGNAL& operator=(const BLOCKED_PIPE_SIGNAL&) = delete;
    ~BLOCKED_PIPE_SIGNAL() {
        const timespec now{};
        if (sigismember(&before_, SIGPIPE) == 0) sigtimedwait(&pipe_only_, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

  private:
    sigset_t pipe_only_{};
    sigset_t before_{};
};

bool IsOutOfRoom(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

}  // namespace

PRODUCT_FILE::PRODUCT_FILE(const PRODUCT_REQUEST& request, mode_t permissions)
    : request_(request),
      header_(RasterHeaderFor(request.path, request.columns, request.rows, KnownPixelType(request.pixel_type))),
      row_bytes_(request.columns * KnownPixelType(request.pixel_type).bytes),
      bytes_(RasterFileBytes(header_)) {
    names_.target = BehindLinks(request_.path);
    if (names_.target.empty()) RefuseToCreate(errno);
    Open(permissions);
}

void PRODUCT_FILE::RefuseToCreate(int error) const {
    Log().Message(LOGGING_LEVEL::ALARM, "configuration: key \"%s\": the product %s can not be written: %s",
                  request_.key.c_str(), request_.path.c_str(), std::strerror(error));
    if (IsOutOfRoom(error)) throw ERROR_NO_DISK_SPACE();
    throw ERROR_CAN_NOT_CREATE_FILE();
}

void PRODUCT_FILE::FailWriting(const char* what, int error) const {
    Log().Message(LOGGING_LEVEL::ALARM, "%s%s", what, request_.path.c_str());
    LogAndThrow<ERROR_CAN_NOT_WRITE_FILE>("%s: %s", request_.path.c_str(), std::strerror(error));
}

void PRODUCT_FILE::Open(mode_t permissions) {
    if (FOLDER_AND_NAME(names_.target).name.empty()) RefuseToCreate(request_.path.empty() ? ENOENT : EISDIR);
    struct stat older {};
    if (stat(names_.target.c_str(), &older) != 0) {
        if (errno != ENOENT || !TryTemporary(permissions)) RefuseToCreate(errno);
        return;
    }
    OpenOlder(older);
    if (way_ == WAY::DIRECT) return;
    if (MayReplace(older, names_.target) && TryTemporary(permissions)) return KeepOwnerAndPermissions(older);
    const int error = errno;
    if (error != EACCES && error != EPERM && error != EROFS) RefuseToCreate(error);
    way_ = WAY::IN_PLACE;
    Log().Message(LOGGING_LEVEL::WARNING,
                  "%s: its folder takes no other file in its place (%s): it is written in place, and a run that fails "
                  "leaves it incomplete",
                  request_.path.c_str(), std::strerror(error));
}

/// Without waiting for a reader of a pipe, and with respect for a write protection.
void PRODUCT_FILE::OpenOlder(const struct stat& older) {
    if (S_ISDIR(older.st_mode)) RefuseToCreate(EISDIR);
    const bool regular = S_ISREG(older.st_mode);
    if (!regular && !S_ISCHR(older.st_mode) && !S_ISFIFO(older.st_mode)) RefuseToCreate(ENODEV);
    file_.Reset(OpenFile(names_.target, O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (file_.Get() < 0) RefuseToCreate(errno);
    if (regular) return;
    way_ = WAY::DIRECT;
    fcntl(file_.Get(), F_SETFL, fcntl(file_.Get(), F_GETFL) & ~O_NONBLOCK);
}

bool PRODUCT_FILE::MakeAndRemember(const FOLDER_AND_NAME& target, mode_t permissions) {
    const BLOCKED_SIGNALS both_or_neither;
    std::string path;
    lock_.Reset(MakeTemporary(target, permissions, path));
    if (lock_.Get() < 0) return false;
    struct stat status {};
    fstat(lock_.Get(), &status);
    names_.device = status.st_dev;
    names_.inode = status.st_ino;
    names_.backup = path + ".old";
    names_.temporary = path;
    RememberUnfinished(names_);
    return true;
}

/// @return whether it is there; else errno tells why not
bool PRODUCT_FILE::TryTemporary(mode_t permissions) {
    const FOLDER_AND_NAME target(names_.target);
    RemoveLeftOvers(target);
    if (!MakeAndRemember(target, permissions)) return false;
    file_.Reset(OpenFile(names_.temporary, O_WRONLY | O_CLOEXEC));
    if (file_.Get() < 0) RefuseToCreate(errno);
    return true;
}

void PRODUCT_FILE::KeepOwnerAndPermissions(const struct stat& older) {
    struct stat status {};
    if (fstat(file_.Get(), &status) != 0) return;
    const bool same_owner = status.st_uid == older.st_uid && status.st_gid == older.st_gid;
    // The owner first: changing it takes some permissions away.
    const bool owner_kept = same_owner || fchown(file_.Get(), older.st_uid, older.st_gid) == 0;
    const bool permissions_kept = fchmod(file_.Get(), older.st_mode & 07777) == 0;
    if (owner_kept && permissions_kept) return;
    Log().Message(LOGGING_LEVEL::WARNING, "%s: the older product's owner and permissions can not be kept: %s",
                  request_.path.c_str(), std::strerror(errno));
}

void PRODUCT_FILE::RequireRoom(std::map<dev_t, long long>& asked) const {
    if (way_ != WAY::DIRECT) ::RequireRoom(request_, file_.Get(), asked);
}

void PRODUCT_FILE::ReserveRoom() const {
    if (way_ == WAY::DIRECT) return;
    const int number = file_.Get();
    const auto reserve = [=, this] { return fallocate(number, FALLOC_FL_KEEP_SIZE, 0, bytes_); };
    if (UnlessInterrupted(reserve) == 0 || errno == EOPNOTSUPP || errno == ENOSYS) return;
    if (IsOutOfRoom(errno)) RefuseForRoom(request_, BytesThere(number), errno);
    RefuseToCreate(errno);
}

void PRODUCT_FILE::LogCreation() const {
    Log().Message(LOGGING_LEVEL::INFO, "creating file with dimensions %u x %u: %s", header_.width, header_.height,
                  request_.path.c_str());
}

void PRODUCT_FILE::CountValues(long long rows, const void* pixels, std::size_t stride) {
    if (!values_wanted_) return;
    VALUE_STATISTICS values;
    for (long long row = 0; row < rows; ++row) {
        const char* const from = static_cast<const char*>(pixels) + static_cast<std::size_t>(row) * stride;
        if (request_.pixel_type == PIXEL_TYPE::U_INT_8)
            values.Add(reinterpret_cast<const unsigned char*>(from), header_.width);
        else
            values.Add(reinterpret_cast<const float*>(from), header_.width);
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    values_.Add(values);
}

void PRODUCT_FILE::WriteRows(long long first_row, long long rows, const void* pixels) {
    if (way_ != WAY::DIRECT) return WriteSpacedRows(first_row, rows, pixels, static_cast<std::size_t>(row_bytes_));
    CountValues(rows, pixels, static_cast<std::size_t>(row_bytes_));
    const long long bytes = rows * row_bytes_;
    std::unique_lock<std::mutex> lock(mutex_);
    turn_.wait(lock, [&] { return abandoned_ || next_row_ == first_row; });
    if (abandoned_) throw ERROR_CAN_NOT_WRITE_FILE();
    lock.unlock();  // no other thread has this turn
    try {
        WriteHeader();
        WriteInOrder(pixels, bytes);
    } catch (...) {
        Abandon();
        throw;
    }
    lock.lock();
    next_row_ += rows;
    turn_.notify_all();
}

void PRODUCT_FILE::WriteSpacedRows(long long first_row, long long rows, const void* pixels, std::size_t stride) {
    WriteHeader();
    const long long rows_per_write = std::max(kBytesPerWrite / std::max(row_bytes_, 1LL), 1LL);
    for (long long done = 0; done < rows; done += rows_per_write) {
        const char* const from = static_cast<const char*>(pixels) + static_cast<std::size_t>(done) * stride;
        const long long count = std::min(rows_per_write, rows - done);
        CountValues(count, from, stride);
        const int error = WriteRowsWholeAt(file_.Get(), from, static_cast<std::size_t>(row_bytes_), stride, count,
                                           kRasterHeaderBytes + (first_row + done) * row_bytes_);
        if (error != 0) FailWriting("MEM_MGR: unable to write into: ", error);
    }
}

void PRODUCT_FILE::Abandon() {
    const std::lock_guard<std::mutex> lock(mutex_);
    abandoned_ = true;
    turn_.notify_all();
}

void PRODUCT_FILE::WriteHeader() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (header_written_) return;
        header_written_ = true;
    }
    const RASTER_HEADER_BYTES header = EncodeRasterHeader(header_);
    const BLOCKED_PIPE_SIGNAL no_signal;
    const int error = way_ == WAY::DIRECT ? WriteWhole(file_.Get(), header.data(), header.size())
                                          : WriteWholeAt(file_.Get(), header.data(), header.size(), 0);
    if (error != 0) FailWriting("MEM_MGR: can not save header for ", error);
}

void PRODUCT_FILE::WriteInOrder(const void* data, long long bytes) {
    const BLOCKED_PIPE_SIGNAL no_signal;
    const int error = WriteWhole(file_.Get(), data, static_cast<std::size_t>(bytes));
    if (error != 0) FailWriting("MEM_MGR: unable to write into: ", error);
}

void PRODUCT_FILE::BeginSynchronising() const {
    if (way_ != WAY::DIRECT) sync_file_range(file_.Get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

void PRODUCT_FILE::LeaveCache() const {
    if (way_ != WAY::DIRECT) posix_fadvise(file_.Get(), 0, 0, POSIX_FADV_DONTNEED);
}

void PRODUCT_FILE::Synchronise() {
    WriteHeader();  // an image of no rows
    int error = 0;
    if (way_ == WAY::IN_PLACE && UnlessInterrupted([this] { return ftruncate(file_.Get(), bytes_); }) != 0)
        error = errno;
    if (error == 0 && way_ != WAY::DIRECT && UnlessInterrupted([this] { return fsync(file_.Get()); }) != 0)
        error = errno;
    const int close_error = file_.Close();
    if (error == 0) error = close_error;
    if (error != 0) FailWriting("MEM_MGR: unable to write into: ", error);
}

std::string PRODUCT_FILE::Folder() const {
    return way_ == WAY::TEMPORARY ? FOLDER_AND_NAME(names_.target).FolderPath() : std::string();
}

void PRODUCT_FILE::Place() {
    if (way_ != WAY::TEMPORARY) return;
    // Another run of this product removes temporaries that nobody holds.
    backup_lock_.Reset(OpenFile(names_.target, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (backup_lock_.Get() >= 0) flock(backup_lock_.Get(), LOCK_EX | LOCK_NB);
    names_.state = UNFINISHED_FILE::STATE::REPLACING;
    const bool undoable = link(names_.target.c_str(), names_.backup.c_str()) == 0 || errno == ENOENT;
    if (!undoable) names_.state = UNFINISHED_FILE::STATE::BUILDING;  // no hard links on this file system
    if (rename(names_.temporary.c_str(), names_.target.c_str()) == 0) return;
    FailWriting("can not put the new product in the place of ", errno);
}

void PRODUCT_FILE::Accept() {
    names_.state = UNFINISHED_FILE::STATE::ACCEPTED;
    if (way_ == WAY::TEMPORARY) unlink(names_.backup.c_str());
}
