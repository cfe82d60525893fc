/// \file log_output.h
/// One destination of the log: a file descriptor that is written without a buffer of our own. A run that is killed
/// loses nothing, several threads need no lock to write pieces, and a signal handler can write to the same destination.

#pragma once

#include <atomic>
#include <string_view>

class LOG_OUTPUT {
  public:
    /// @param descriptor open for writing, or -1: all writing is then without effect
    explicit LOG_OUTPUT(int descriptor) : descriptor_(descriptor) {}
    LOG_OUTPUT(const LOG_OUTPUT&) = delete;
    LOG_OUTPUT& operator=(const LOG_OUTPUT&) = delete;

    /// Takes over the descriptor in place of the present one. The number stays the same where there is one already:
    /// another thread that is about to write cannot hit a closed or foreign descriptor.
    void MoveTo(int descriptor);
    void Close();
    [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }

    /// Writes everything. An output that fails (disk full, terminal gone) is no reason to stop the program, so callers
    /// may ignore the result: whether all bytes went out.
    bool Write(std::string_view text);

    /// Async-signal-safe. Waits at most patience_ms for the output to take bytes, then gives it up for good; begins on
    /// a new line when a line is under way. At most PIPE_BUF bytes, so that a pipe which is ready takes them all at
    /// once.
    void WriteLineFromHandler(std::string_view line, int patience_ms) noexcept;

  private:
    std::atomic<int> descriptor_;
    std::atomic<int> opening_writes_{0};     ///< writes under way that leave a line open
    std::atomic<bool> line_is_open_{false};  ///< the last byte written was no line end, or may have been none
};
