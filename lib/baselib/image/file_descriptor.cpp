#include "lib/baselib/image/file_descriptor.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
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
    const bool closed = close(std::exchange(number_, -1)) == 0;
    return closed || errno == EINTR ? 0 : errno;  // interrupted it is closed all the same
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

int WriteRowsWholeAt(int file_descriptor, const void* data, std::size_t row_bytes, std::size_t stride, long long rows,
                     off_t offset) {
    constexpr long long kRowsPerWrite = 256;
    if (stride == row_bytes)
        return WriteWholeAt(file_descriptor, data, static_cast<std::size_t>(rows) * row_bytes, offset);
    const auto row_at = [=](long long row) {
        return static_cast<char*>(const_cast<void*>(data)) + static_cast<std::size_t>(row) * stride;  // only read
    };
    return WriteAll(static_cast<std::size_t>(rows) * row_bytes, [=](std::size_t done) {
        const auto first = static_cast<long long>(done / row_bytes);
        const std::size_t done_of_first = done % row_bytes;
        const long long count = std::min(kRowsPerWrite, rows - first);
        std::array<iovec, kRowsPerWrite> parts;
        for (long long i = 0; i < count; ++i) parts[static_cast<std::size_t>(i)] = {row_at(first + i), row_bytes};
        parts[0] = {row_at(first) + done_of_first, row_bytes - done_of_first};
        return pwritev(file_descriptor, parts.data(), static_cast<int>(count), offset + static_cast<off_t>(done));
    });
}
