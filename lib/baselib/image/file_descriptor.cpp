#include "lib/baselib/image/file_descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

FILE_DESCRIPTOR::~FILE_DESCRIPTOR() {
    Close();
}

void FILE_DESCRIPTOR::Reset(int number) {
    Close();
    number_ = number;
}

int FILE_DESCRIPTOR::Release() {
    return std::exchange(number_, -1);
}

int FILE_DESCRIPTOR::Close() {
    if (number_ < 0) return 0;
    return close(std::exchange(number_, -1)) == 0 ? 0 : errno;
}

int OpenFile(const std::string& path, int flags, mode_t permissions) {
    return UnlessInterrupted([&] { return open(path.c_str(), flags, permissions); });
}

std::size_t ReadWhole(int file_descriptor, void* buffer, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        char* const to = static_cast<char*>(buffer) + done;
        const ssize_t got = UnlessInterrupted([=] { return read(file_descriptor, to, bytes - done); });
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

namespace {

/// @param write_some  as write(), of the bytes from an index on
template <class WRITE_SOME>
int WriteAll(std::size_t bytes, const WRITE_SOME& write_some) {
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t put = UnlessInterrupted([&] { return write_some(done); });
        if (put < 0) return errno;
        if (put == 0) return EIO;  // a device that takes nothing and reports nothing
        done += static_cast<std::size_t>(put);
    }
    return 0;
}

}  // namespace

int WriteWhole(int file_descriptor, const void* data, std::size_t bytes) {
    const char* const from = static_cast<const char*>(data);
    return WriteAll(bytes, [=](std::size_t done) { return write(file_descriptor, from + done, bytes - done); });
}

int WriteWholeAt(int file_descriptor, const void* data, std::size_t bytes, off_t offset) {
    const char* const from = static_cast<const char*>(data);
    return WriteAll(bytes, [=](std::size_t done) {
        return pwrite(file_descriptor, from + done, bytes - done, offset + static_cast<off_t>(done));
    });
}
