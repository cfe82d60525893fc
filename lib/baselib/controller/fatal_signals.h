/// \file fatal_signals.h
/// The reaction to fatal signals: two ALARM lines, the ERROR status file, status 1; status 255 while nobody is
/// registered.
///
/// The handler may run on any thread, while any thread (its own included) holds the logging lock, an allocator's lock
/// or a stream's lock. A handler that logs through mutex and buffered streams and leaves by exit() hung in 95 of 100
/// runs under load. This one therefore makes async-signal-safe calls only, on texts that are complete before a signal
/// can come: it waits for another thread's line for a bounded time, writes its own lines with write(), the status file
/// with open() and write(), and leaves with _exit(). Log lines are unbuffered, so nothing is lost by that.
///
/// A second signal: on the same thread it is blocked while the handler runs, another thread's handler waits for the
/// end. A fault inside the handler ends the process by that signal, with the ERROR file of the start left behind.

#pragma once

#include <array>
#include <string>

/// Signal numbers for which there are texts.
inline constexpr int kSignalCount = 32;

/// The text of a signal number, empty outside 1..31 and for 16.
[[nodiscard]] const char* SignalText(int number) noexcept;

/// What the handler needs of the controller; complete and constant once registered.
struct FATAL_SIGNAL_REACTION {
    /// @param process_name shown in the controller message lines; control bytes are escaped here
    /// @param ok_path, error_path empty while the names of the status files are unknown
    FATAL_SIGNAL_REACTION(const std::string& process_name, bool controller_messages, const std::string& ok_path,
                          const std::string& error_path);

    std::array<std::string, kSignalCount> controller_lines;  ///< by signal number; empty without controller messages
    std::string ok_path;
    std::string error_path;
    std::string can_not_create_line;
};

/// What other libraries have to say and to do when a fatal signal ends the process. Async-signal-safe functions.
struct FATAL_SIGNAL_HELP {
    const char* (*explain_bus_error)(const void* address) noexcept = nullptr;  ///< a line for ALARM, or null
    void (*clean_up)() noexcept = nullptr;
};
void SetFatalSignalHelp(const FATAL_SIGNAL_HELP& help) noexcept;

/// Called last, when the status file is there, with the number of the signal. Async-signal-safe.
void SetLeaveReport(void (*leave_report)(int signal_number) noexcept) noexcept;

/// Installs the handler, also on an alternate stack for the calling thread. Calling it again changes nothing.
/// SIGPIPE and SIGALRM keep their default action: a broken pipe ends the run by the signal itself, and so does an
/// unanswered keyboard question.
void InstallFatalSignalHandlers();

/// From now on signals react in this way; the object must outlive the registration. Null: nobody is registered.
void RegisterForFatalSignals(const FATAL_SIGNAL_REACTION* reaction) noexcept;
