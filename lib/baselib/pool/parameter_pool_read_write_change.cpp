#include "lib/baselib/pool/parameter_pool_read_write_change.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "lib/baselib/pool/pool_update.h"

void PARAMETER_POOL_READ_WRITE_CHANGE::Open(const std::string& path) {
    Log().Message(LOGGING_LEVEL::DEBUG, "construct pool_rwc: %s", path.c_str());
    PARAMETER_POOL::Open(path);
    if (IsWritable()) return;
    Log().Message(LOGGING_LEVEL::ALARM, "can not open pool file for update %s", path.c_str());
    throw CAN_NOT_OPEN_POOL();
}

void PARAMETER_POOL_READ_WRITE_CHANGE::Update() {
    if (pending_.IsEmpty()) return;
    ReopenIfReplaced();
    FILE* const stream = Stream();
    errno = EACCES;
    if (!IsWritable() || faccessat(AT_FDCWD, FileName().c_str(), W_OK, AT_EACCESS) != 0) {
        const int error = errno;
        Log().Message(LOGGING_LEVEL::ALARM, "no permission to change pool file: %s", FileName().c_str());
        Log().Message(LOGGING_LEVEL::ALARM, "%s", std::strerror(error));
        throw NO_UPDATE_PERMISSION_FOR_POOL();
    }
    POOL_UPDATE update(stream, FileName(), Directory());
    CountUpdate();
    try {
        update.Run(pending_);
    } catch (...) {
        // What is missing in the pool now stands in the temporary file; a further update would seal the loss.
        if (update.HasTruncatedPool()) ForbidUpdates();
        throw;
    }
    pending_.Clear();
}

void PARAMETER_POOL_READ_WRITE_CHANGE::LogRefusal(const std::string& key) const {
    Log().Message(LOGGING_LEVEL::ALARM, "%s: key \"%s\": the value can not be written into the pool",
                  FileName().c_str(), key.c_str());
}
