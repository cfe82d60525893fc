/// \file logging.h
/// The one channel through which the program talks to its user: every line goes, filtered by level, to the screen
/// (standard output) and to a log file.
/// Threads: any thread may log. Message() writes whole lines under the process-wide mutex; the stream form does not lock,
/// so a line built from several << can interleave with other threads' lines, but never corrupts memory.

#pragma once

#include <atomic>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

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

    /// The process-wide object; created, with a temporary log file, by the first call.
    static LOGGING& Get();

    /// One whole line in printf style. Control bytes of the formatted text are shown as \xNN, so that a value from
    /// outside can neither forge a line nor colour the terminal.
    /// @throws const char* for a level above ALARM
    void Message(LOGGING_LEVEL level, const char* format, ...) __attribute__((format(printf, 3, 4)));

    /// Begins a line of the stream form: tag and prefix. The caller ends the line by "\n".
    /// @throws const char* for a level above ALARM
    LOGGING& operator<<(LOGGING_LEVEL level);
    /// The program's own text, written as it is.
    LOGGING& operator<<(const char* text);
    /// A value from outside: control bytes are shown as \xNN.
    LOGGING& operator<<(std::string_view value);
    LOGGING& operator<<(const std::string& value) { return *this << std::string_view(value); }
    LOGGING& operator<<(char value);
    LOGGING& operator<<(int value);
    LOGGING& operator<<(long value);
    LOGGING& operator<<(long long value);
    LOGGING& operator<<(unsigned long value);
    LOGGING& operator<<(double value);

    void SetScreenThreshold(int level);
    void SetFileThreshold(int level);

    /// Moves the log, with all that has been logged so far, to this file; the temporary file is removed.
    void SetLogFile(const std::string& file_name);
    std::string LogFileName() const;

    void Header(const VERSION_RECORD& version, const std::string& configuration_file);
    void Footer();
    void SetPrefix(const std::string& text);

  private:
    LOGGING();
    ~LOGGING();

    void WriteLine(LOGGING_LEVEL level, const std::string& text);
    void Append(std::string_view text);

    mutable std::mutex mutex_;
    FILE* file_ = nullptr;
    std::atomic<int> screen_threshold_{2};
    std::atomic<int> file_threshold_{2};
    std::atomic<int> current_level_{1};
    std::string prefix_ = "global : ";
    std::string file_name_;
    long opening_time_s_ = 0;  ///< seconds since the epoch
};

inline LOGGING& Log() { return LOGGING::Get(); }
