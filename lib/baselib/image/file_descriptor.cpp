#include "lib/baselib/image/file_descriptor.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

FILE_DESCRIPTOR::~FILE_DESCRIPTOR() {
    Close();
}

int FILE_DESCRIPTOR::Release() {
    return std::exchange(number_, -1);
}

int FILE_DESCRIPTOR::Close() {
    if (number_ < 0) return 0;
    return close(std::exchange(number_, -1)) == 0 ? 0 : errno;
}

std::size_t ReadWhole(int file_descriptor, void* buffer, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t got = read(file_descriptor, static_cast<char*>(buffer) + done, bytes - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

int WriteWhole(int file_descriptor, const void* data, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t put = write(file_descriptor, static_cast<const char*>(data) + done, bytes - done);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return errno;
        if (put == 0) return EIO;  // a device that takes nothing and reports nothing
        done += static_cast<std::size_t>(put);
    }
    return 0;
}
