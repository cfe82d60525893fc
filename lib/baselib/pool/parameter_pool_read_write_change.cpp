#include "lib/baselib/pool/parameter_pool_read_write_change.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "lib/baselib/pool/pool_transaction.h"

namespace {

/// Tries it with a file that never has a name, where the file system knows such files.
bool TakesNewFiles(const std::string& directory) {
    const int unnamed = open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (unnamed >= 0) {
        close(unnamed);  // nothing was written that this could lose
        return true;
    }
    const bool is_unknown = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == EINTR;
    return is_unknown && faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

}  // namespace

void PARAMETER_POOL_READ_WRITE_CHANGE::Open(const std::string& path) {
    Log().Message(LOGGING_LEVEL::DEBUG, "construct pool_rwc: %s", path.c_str());
    try {
        PARAMETER_POOL::Open(path);
    } catch (const CAN_NOT_OPEN_POOL&) {
        Log().Message(LOGGING_LEVEL::ALARM, "can not open pool file for update %s", path.c_str());
        throw;
    }
    const POOL_FILE& file = File();
    if (file.IsWritable() && TakesNewFiles(file.Directory())) return;
    const int error = errno;
    Log().Message(LOGGING_LEVEL::ALARM, "can not open pool file for update %s", path.c_str());
    if (file.IsWritable())
        Log().Message(LOGGING_LEVEL::ALARM, "its folder %s takes no new file, an update needs one: %s",
                      file.Directory().c_str(), std::strerror(error));
    throw CAN_NOT_OPEN_POOL();
}

void PARAMETER_POOL_READ_WRITE_CHANGE::Update() {
    if (pending_.IsEmpty()) return;
    POOL_TRANSACTION({this}).Commit();
}

void PARAMETER_POOL_READ_WRITE_CHANGE::RequirePermission() {
    if (File().IsReplaced()) PARAMETER_POOL::Open(FileName());
    errno = EACCES;
    if (File().IsWritable() && faccessat(AT_FDCWD, FileName().c_str(), W_OK, AT_EACCESS) == 0) return;
    const int error = errno;
    Log().Message(LOGGING_LEVEL::ALARM, "no permission to change pool file: %s", FileName().c_str());
    Log().Message(LOGGING_LEVEL::ALARM, "%s", std::strerror(error));
    throw NO_UPDATE_PERMISSION_FOR_POOL();
}

void PARAMETER_POOL_READ_WRITE_CHANGE::LogRefusal(const std::string& key) const {
    Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"%s\": the value can not be written into the pool",
                  FileName().c_str(), key.c_str());
}
