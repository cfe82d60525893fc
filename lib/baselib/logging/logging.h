/// \file logging.h
/// The one channel through which the program talks to its user: every line goes, filtered by level, to the screen
/// (standard output) and to a log file. A line is a tag of five characters, " : ", the prefix ("global : ") and the
/// text.
///
/// Two forms. Message() writes one whole line, emphasised on the screen from WARNING on (not where NO_COLOR is set and
/// not empty, nor on a terminal of the kind "dumb"); control bytes in its formatted text are shown as \xNN. The stream
/// form begins a line with a level, adds values, and the caller ends it by "\n":
///
///     Log() << LOGGING_LEVEL::DEBUG << "copy " << source << " to " << target << "\n";
///
/// There `const char*` is the program's own text, written as it is; std::string, std::string_view and char* are values
/// from outside and have their control bytes shown as \xNN.
///
/// Threads: any thread may log. Message(), the thresholds, the header, the footer and the move to another file take the
/// one mutex. The stream form does not, so a line built from several << can interleave with other threads' lines;
/// everything that it touches is atomic. Each line or piece is one write() without a buffer: nothing is lost by a kill.
/// Signals: a handler uses BeginEmergency() and EmergencyLine() only.

#pragma once

#include <atomic>
#include <cstdarg>
#include <ctime>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "lib/baselib/logging/log_output.h"
#include "lib/baselib/logging/log_tally.h"
#include "lib/baselib/logging/version_record.h"

/// The number orders the levels: a line is shown when its level is at or above a threshold.
enum class LOGGING_LEVEL : int {
    TRACE = 1,
    DEBUG = 2,
    PARAMETER = 3,
    INFO = 4,
    QA_WARNING = 5,
    WARNING = 6,
    EXCEPTION = 7,
    ALARM = 8,
    NO_MESSAGE = 9  ///< a threshold only; nothing may be logged at it
};

class LOGGING {
  public:
    LOGGING(const LOGGING&) = delete;
    LOGGING& operator=(const LOGGING&) = delete;

    /// Counts a user of the process-wide object and creates it, with a temporary log file, for the first one.
    static LOGGING& Request();
    /// The last release closes the file and frees the object; a later request starts afresh.
    static void Release();
    /// The object without counting; requests it once for the process when nobody has.
    static LOGGING& Get();

    /// One whole line in printf style.
    /// @throws const char* for a level above ALARM
    void Message(LOGGING_LEVEL level, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// The same for a caller that has a variable list of its own.
    void MessageOf(LOGGING_LEVEL level, const char* format, std::va_list arguments)
        __attribute__((format(printf, 3, 0)));

    /// Begins a line of the stream form: tag and prefix.
    /// @throws const char* for a level above ALARM
    LOGGING& operator<<(LOGGING_LEVEL level);
    /// A null text puts the screen's side of the stream form out of order for the rest of the run, as an output stream.
    LOGGING& operator<<(const char* text);
    LOGGING& operator<<(std::string_view value);
    LOGGING& operator<<(const std::string& value) { return *this << std::string_view(value); }
    LOGGING& operator<<(char* value) { return *this << std::string_view(value); }
    LOGGING& operator<<(char value);
    LOGGING& operator<<(int value);
    LOGGING& operator<<(long value);
    LOGGING& operator<<(long long value);
    LOGGING& operator<<(unsigned int value);
    LOGGING& operator<<(unsigned long value);
    LOGGING& operator<<(unsigned long long value);
    LOGGING& operator<<(double value);  ///< "%.10g"

    /// Thresholds are numbers because an unknown level name stands for 10, which silences an output entirely.
    void SetScreenThreshold(int level);
    void SetFileThreshold(int level);
    /// Whether lines of this level go anywhere: what only such a line tells need not be computed else.
    [[nodiscard]] bool Takes(LOGGING_LEVEL level) const;

    /// Moves the log to this file, which is appended to. What went into a temporary file so far is copied, and the
    /// temporary file removed. When the file cannot be opened (a named pipe that nobody reads is none), the screen says
    /// so and stays the only output until a file is named again, the former one included.
    void SetLogFile(const std::string& file_name);
    [[nodiscard]] std::string LogFileName() const;
    /// Whether the log still goes into the temporary file of its creation.
    [[nodiscard]] bool HasTemporaryFile() const;

    void Header(const VERSION_RECORD& version, const std::string& configuration_file);
    void Footer();
    void SetPrefix(const std::string& text);
    [[nodiscard]] std::time_t OpeningTime() const { return opening_time_; }

    /// Whether a QA warning was logged, shown or not.
    [[nodiscard]] bool QaWarningLogged() const { return qa_warning_logged_; }
    /// While on, the texts of messages that reach the screen are also collected, without tag and prefix.
    void SetCapture(bool on);
    [[nodiscard]] std::vector<std::string> CapturedLines() const;

    /// Warnings and last errors, for the run's report.
    [[nodiscard]] const LOG_TALLY& Tally() const { return tally_; }

    /// Nothing of ours waits in a buffer; what the C library still holds for standard output goes out.
    void Flush();

    /// For a signal handler: keeps other threads from beginning further output and waits, for a bounded time, until the
    /// piece that is being written is out. Async-signal-safe.
    static void BeginEmergency() noexcept;
    /// For a signal handler, after BeginEmergency(): one line in the stream form, cut at 1000 bytes, at most half a
    /// second per output. The text is written as it is: prepare values from outside with Printable().
    /// Async-signal-safe.
    static void EmergencyLine(LOGGING_LEVEL level, const char* text) noexcept;

  private:
    LOGGING();
    ~LOGGING();

    void OpenTemporaryFile();
    std::string CopyTemporaryFile(int target) const;
    void RemoveTemporaryFile(const std::string& name);
    void WriteLine(LOGGING_LEVEL level, const std::string& text);
    void Append(std::string_view text);
    void Show(std::string_view text);

    mutable std::mutex mutex_;
    LOG_OUTPUT screen_{1};
    LOG_TALLY tally_;
    const bool emphasis_;  ///< unless the environment says that the screen shall stay plain
    LOG_OUTPUT file_{-1};
    std::atomic<int> screen_threshold_{2};
    std::atomic<int> file_threshold_{2};
    std::atomic<int> current_level_{1};
    std::atomic<const std::string*> prefix_;  ///< the last of prefixes_; the stream form reads it without the mutex
    std::deque<std::string> prefixes_;        ///< every prefix so far: a reader may still hold an earlier one
    std::string file_name_;
    bool file_is_temporary_ = false;
    std::time_t opening_time_;
    std::atomic<bool> qa_warning_logged_{false};
    std::atomic<bool> screen_stream_failed_{false};
    bool capture_ = false;
    std::vector<std::string> captured_lines_;
};

inline LOGGING& Log() {
    return LOGGING::Get();
}

/// Ends the process at once with status 1, from any thread, for failures after which no number can be trusted. The
/// ERROR status file of the controller stays behind.
[[noreturn]] void HardStop();
