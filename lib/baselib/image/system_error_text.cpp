#include "lib/baselib/image/system_error_text.h"

#include <cerrno>
#include <cstring>

#include "lib/baselib/logging/logging.h"

namespace {

struct ERROR_LINE {
    int error_number;
    const char* text;
};

constexpr ERROR_LINE kOpenErrors[] = {{EACCES, "EACCES: see: man page of open"},
                                      {EAGAIN, "EAGAIN: see: man page of open"},
                                      {EEXIST, "EEXIST: see: man page of open"},
                                      {EFAULT, "EFAULT: see: man page of open"},
                                      {EINTR, "EINTR: see: man page of open"},
                                      {EIO, "EIO: see: man page of open"},
                                      {EISDIR, "EISDIR: see: man page of open"},
                                      {ELOOP, "ELOOP: see: man page of open"},
                                      {EMFILE, "EMFILE: see: man page of open"},
                                      {EMULTIHOP, "EMULTIHOP: see: man page of open"},
                                      {ENAMETOOLONG, "ENAMETOOLONG: see: man page of open"},
                                      {ENFILE, "ENFILE: see: man page of open"},
                                      {ENOENT, "ENOENT: see: man page of open"},
                                      {ENOLINK, "ENOLINK: see: man page of open"},
                                      {ENOMEM, "ENOMEM: see: man page of open"},
                                      {ENOSPC, "ENOSPC: see: man page of open"},
                                      {ENOSR, "ENOSR: see: man page of open"},
                                      {ENOTDIR, "ENOTDIR: see: man page of open"},
                                      {ENXIO, "ENXIO: see: man page of open"}};

constexpr ERROR_LINE kMsyncErrors[] = {
    {EPERM, "EPERM: MS_INVALIDATE was specified and one or more of the pages is locked in memory"},
    {EIO, "EIO: An I/O error occurred while reading from or writing to the file system .."},
    {ENOMEM,
     "ENOMEM: Addresses are outside the valid range for the address space of a process, or specify one or more pages "
     "that "
     "are not mapped .."},
    {EBUSY, "EBUSY: Some or all of the addresses are locked .."},
    {EINVAL, "EINVAL: addr is not a multiple of the page size or wrong flag .."}};

template <class TABLE>
const char* Find(const TABLE& table, int error_number, const char* otherwise) {
    for (const ERROR_LINE& line : table) {
        if (line.error_number == error_number) return line.text;
    }
    return otherwise;
}

}  // namespace

const char* OpenErrorText(int error_number) {
    return Find(kOpenErrors, error_number, "open unknown system error code");
}

const char* MsyncErrorText(int error_number) {
    return Find(kMsyncErrors, error_number, "unhandled msync() error");
}

void LogOpenFailure(const std::string& path, int error_number) {
    Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: can not open: %s", path.c_str());
    Log().Message(LOGGING_LEVEL::ALARM, "%s", OpenErrorText(error_number));
    Log().Message(LOGGING_LEVEL::ALARM, "%s: %s", path.c_str(), std::strerror(error_number));
}
