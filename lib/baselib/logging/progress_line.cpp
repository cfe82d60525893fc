#include "lib/baselib/logging/progress_line.h"

#include <unistd.h>

#include <cstdio>
#include <string_view>

namespace {

/// One write, so that threads do not mix their lines. A terminal that is gone is no reason to stop.
void WriteToTerminal(std::string_view text) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

PROGRESS_LINE::PROGRESS_LINE(long long total) : shown_(isatty(STDERR_FILENO) == 1), total_(total) {}

PROGRESS_LINE::~PROGRESS_LINE() {
    if (shown_ && percent_shown_ >= 0) WriteToTerminal("                \r");
}

void PROGRESS_LINE::Done() {
    if (!shown_) return;
    const long long done = ++done_;
    const int percent = static_cast<int>(done * 100 / total_);
    int before = percent_shown_;
    while (percent > before) {
        if (!percent_shown_.compare_exchange_weak(before, percent)) continue;
        char line[32];
        const int length = std::snprintf(line, sizeof line, "%3d %% simulated\r", percent);
        WriteToTerminal({line, static_cast<std::size_t>(length)});
        return;
    }
}
