#include "lib/baselib/controller/fatal_signals.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

#include "lib/baselib/controller/status_files.h"
#include "lib/baselib/logging/log_texts.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// In the order of installation; SIGIOT and SIGABRT are one number. SIGURG is no mistake: a chain may send it.
constexpr int kFatalSignals[] = {SIGHUP, SIGINT,  SIGQUIT, SIGILL,  SIGIOT, SIGABRT, SIGFPE,
                                 SIGBUS, SIGSEGV, SIGSYS,  SIGTERM, SIGURG, SIGXCPU, SIGXFSZ};

std::atomic<const FATAL_SIGNAL_REACTION*> registered{nullptr};
static_assert(std::atomic<const FATAL_SIGNAL_REACTION*>::is_always_lock_free);

std::atomic<void (*)(int) noexcept> leave_report_of_others{nullptr};
FATAL_SIGNAL_HELP help_of_others;  // constant once the handlers are installed

std::string GotFatalSignal(int number) {
    return "got fatal signal " + std::to_string(number) + ": " + SignalText(number);
}

/// "got fatal signal ..." by number; built before the handler is installed, and never destroyed: a signal may come
/// while the process is already leaving through exit().
using SIGNAL_LINES = std::array<std::string, kSignalCount>;
std::atomic<const SIGNAL_LINES*> reason_lines{nullptr};

void PrepareReasonLines() {
    if (reason_lines != nullptr) return;
    auto* const lines = new SIGNAL_LINES;
    for (int number = 0; number < kSignalCount; ++number) (*lines)[number] = GotFatalSignal(number);
    reason_lines = lines;
}

/// Not even a handler may hang, for example in a write to a terminal that takes nothing: then SIGALRM ends the process.
constexpr unsigned kLongestHandlingSeconds = 2;

void LeaveErrorStatus(const FATAL_SIGNAL_REACTION& reaction) noexcept {
    RemoveStatusFile(reaction.ok_path.c_str());
    if (reaction.error_path.empty()) return;
    if (!WriteStatusFile(reaction.error_path.c_str(), '1'))
        LOGGING::EmergencyLine(LOGGING_LEVEL::WARNING, reaction.can_not_create_line.c_str());
}

void ExplainBusError(int number, const siginfo_t& information) noexcept {
    if (number != SIGBUS || help_of_others.explain_bus_error == nullptr) return;
    const char* const line = help_of_others.explain_bus_error(information.si_addr);
    if (line != nullptr) LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, line);
}

extern "C" void HandleFatalSignal(int number, siginfo_t* information, void* /*context*/) {
    static std::atomic_flag handling;
    if (handling.test_and_set())
        for (;;) pause();
    alarm(kLongestHandlingSeconds);
    LOGGING::BeginEmergency();
    LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, (*reason_lines.load())[number].c_str());
    ExplainBusError(number, *information);
    if (help_of_others.clean_up != nullptr) help_of_others.clean_up();
    const FATAL_SIGNAL_REACTION* const reaction = registered;
    if (reaction == nullptr) _exit(255);
    if (!reaction->controller_lines[number].empty())
        LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, reaction->controller_lines[number].c_str());
    LeaveErrorStatus(*reaction);
    if (const auto leave_report = leave_report_of_others.load(); leave_report != nullptr) leave_report(number);
    _exit(1);
}

/// A stack overflow leaves no room for a handler on the overflown stack.
void UseAlternateStack() {
    static std::array<char, 65536> stack;
    const stack_t alternate = {stack.data(), 0, stack.size()};
    sigaltstack(&alternate, nullptr);
}

/// An ignored or blocked SIGALRM, inherited from the caller, would turn the time limits into endless waits.
void RestoreAlarmSignal() {
    std::signal(SIGALRM, SIG_DFL);
    sigset_t alarm_only;
    sigemptyset(&alarm_only);
    sigaddset(&alarm_only, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarm_only, nullptr);
}

}  // namespace

const char* SignalText(int number) noexcept {
    static constexpr std::array<const char*, kSignalCount> kTexts = {
        "",
        "hangup",
        "interrupt (rubout)",
        "quit (ASCII FS)",
        "illegal instruction (not reset when caught)",
        "trace trap (not reset when caught)",
        "IOT instruction",
        "bus error",
        "floating point exception",
        "kill (cannot be caught or ignored)",
        "user defined signal 1",
        "segmentation violation",
        "user defined signal 2",
        "write on a pipe with no one to read it",
        "alarm clock",
        "software termination signal from kill",
        "",
        "child status change",
        "stopped process has been continued",
        "stop (cannot be caught or ignored)",
        "user stop requested from tty",
        "background tty read attempted",
        "background tty write attempted",
        "urgent socket condition",
        "exceeded cpu limit",
        "exceeded file size limit",
        "virtual timer expired",
        "profiling timer expired",
        "window size change",
        "pollable event occurred",
        "power-fail restart",
        "bad argument to system call",
    };
    return number < 0 || number >= kSignalCount ? "" : kTexts[static_cast<size_t>(number)];
}

FATAL_SIGNAL_REACTION::FATAL_SIGNAL_REACTION(const std::string& process_name, bool controller_messages,
                                             const std::string& ok, const std::string& error)
    : ok_path(ok), error_path(error), can_not_create_line("Can not create file " + Printable(error) + "!") {
    if (!controller_messages) return;
    for (int number = 0; number < kSignalCount; ++number)
        controller_lines[number] = "ORQ_MSG|ERROR|" + Printable(process_name) + " " + GotFatalSignal(number);
}

void InstallFatalSignalHandlers() {
    Log();  // the handler does not create the log
    PrepareReasonLines();
    UseAlternateStack();
    RestoreAlarmSignal();
    struct sigaction action = {};
    action.sa_sigaction = HandleFatalSignal;
    action.sa_flags = SA_ONSTACK | SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    // Blocked too: with nobody to read the screen's pipe the handler must still leave its status file.
    sigaddset(&action.sa_mask, SIGPIPE);
    for (const int number : kFatalSignals) sigaddset(&action.sa_mask, number);
    for (const int number : kFatalSignals) sigaction(number, &action, nullptr);
}

void SetFatalSignalHelp(const FATAL_SIGNAL_HELP& help) noexcept {
    help_of_others = help;
}

void SetLeaveReport(void (*leave_report)(int signal_number) noexcept) noexcept {
    leave_report_of_others = leave_report;
}

void RegisterForFatalSignals(const FATAL_SIGNAL_REACTION* reaction) noexcept {
    registered = reaction;
}
