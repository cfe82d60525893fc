#include "lib/baselib/logging/log_output.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace {

/// Whoever shares our standard output may have made it non-blocking: a full pipe is then waited for, as by other
/// writes.
bool WaitForRoom(int descriptor) {
    pollfd output = {descriptor, POLLOUT, 0};
    return poll(&output, 1, -1) > 0 || errno == EINTR;
}

bool WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EAGAIN && WaitForRoom(descriptor)) continue;
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

}  // namespace

void LOG_OUTPUT::MoveTo(int descriptor) {
    const int present = descriptor_;
    if (present < 0) {
        descriptor_ = descriptor;
        return;
    }
    dup3(descriptor, present, O_CLOEXEC);
    close(descriptor);
}

void LOG_OUTPUT::Close() {
    const int present = descriptor_.exchange(-1);
    if (present >= 0) close(present);
}

bool LOG_OUTPUT::Write(std::string_view text) {
    const int descriptor = descriptor_;
    if (text.empty()) return true;
    if (descriptor < 0) return false;
    // Threads write without a lock, so their order here and in the file may differ. An open line is marked on both
    // sides of its write, a whole one before it only, and a handler may interrupt between write and mark, hence the
    // count: what a handler sees may err towards "open" (an empty line), never towards "ended".
    const bool opens = text.back() != '\n';
    if (opens) ++opening_writes_;
    line_is_open_ = opens;
    const bool complete = WriteAll(descriptor, text);
    if (opens) {
        line_is_open_ = true;
        --opening_writes_;
    }
    return complete;
}

void LOG_OUTPUT::WriteLineFromHandler(std::string_view line, int patience_ms) noexcept {
    const int descriptor = descriptor_;
    if (descriptor < 0) return;
    pollfd ready = {descriptor, POLLOUT, 0};
    if (poll(&ready, 1, patience_ms) <= 0) {
        descriptor_ = -1;
        return;
    }
    // A failing output is given up silently: this is the last thing that the process does.
    if (line_is_open_.exchange(false) || opening_writes_ > 0) [[maybe_unused]]
        const ssize_t ended = write(descriptor, "\n", 1);
    [[maybe_unused]] const ssize_t written = write(descriptor, line.data(), line.size());
}
