#include "lib/baselib/logging/logging.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "lib/baselib/logging/log_texts.h"
#include "lib/baselib/logging/unless_interrupted.h"

namespace {

constexpr std::array<const char*, 9> kTags = {"LEV_?", "TRACE", "DEBUG", "PARAM", "INFO ",
                                              "QA_WA", "WARN ", "EXCEP", "ALARM"};
constexpr std::array<const char*, 9> kEmphasis = {"", "", "", "", "", "", "\033[4m", "\033[1m", "\033[7m"};
constexpr const char* kEmphasisOff = "\033[0m";
constexpr const char* kRule = "***********************************************************";

size_t RowOf(int level) {
    return static_cast<size_t>(std::clamp(level, 0, 8));
}

std::atomic<LOGGING*> the_logging{nullptr};
std::mutex lifetime_mutex;
int users = 0;

/// Set by a signal handler that is about to end the process: from then on it alone writes.
std::atomic<bool> emergency{false};
std::atomic<int> active_writers{0};
thread_local int this_thread_writes = 0;

/// Marks a write under way, so that a handler can wait for its end; and holds writes back once a handler has begun.
class WRITER {
  public:
    WRITER() {
        ++this_thread_writes;
        ++active_writers;
    }
    ~WRITER() {
        --active_writers;
        --this_thread_writes;
    }
    WRITER(const WRITER&) = delete;
    WRITER& operator=(const WRITER&) = delete;
    [[nodiscard]] static bool MayWrite() { return !emergency; }
};

std::string Formatted(const char* format, std::va_list arguments) {
    char* text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    if (length < 0) return format;
    std::string formatted(text, static_cast<size_t>(length));
    std::free(text);
    return formatted;
}

/// A named pipe that nobody reads is refused instead of waited for; with a reader it is written as any file: the output
/// waits for room.
int OpenForAppending(const std::string& path) {
    constexpr int kToItsEnd = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC;
    return UnlessInterrupted([&] { return open(path.c_str(), kToItsEnd, 0666); });
}

/// The customary ways to say that codes for emphasis are not wanted (no-color.org), or not understood.
bool WantsEmphasis() {
    const char* const no_color = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return (no_color == nullptr || *no_color == '\0') && (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
}

std::string HostName() {
    char name[257] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

/// The controller that started the run, and its version where it tells one.
std::string StartedBy() {
    const char* const process = std::getenv("PROC_NAME");
    if (process == nullptr) return "";
    const char* const version = std::getenv((std::string(process) + "_VERSION").c_str());
    return std::string(process) + (version == nullptr ? "" : version);
}

}  // namespace

LOGGING& LOGGING::Request() {
    const std::lock_guard lock(lifetime_mutex);
    if (users++ == 0) the_logging = new LOGGING;
    return *the_logging;
}

void LOGGING::Release() {
    const std::lock_guard lock(lifetime_mutex);
    if (users > 0 && --users == 0) delete the_logging.exchange(nullptr);
}

LOGGING& LOGGING::Get() {
    LOGGING* const logging = the_logging.load(std::memory_order_acquire);
    return logging == nullptr ? Request() : *logging;
}

LOGGING::LOGGING() : emphasis_(WantsEmphasis()), prefixes_{"global : "}, opening_time_(std::time(nullptr)) {
    prefix_ = &prefixes_.back();
    OpenTemporaryFile();
}

LOGGING::~LOGGING() {
    Flush();
    file_.Close();
}

void LOGGING::OpenTemporaryFile() {
    for (const char* directory : {"/tmp/", "/var/tmp/", "./"}) {
        std::string name = std::string(directory) + "log.XXXXXX";
        // Exclusive creation: a link planted under the name is never followed.
        const int descriptor = mkostemp(name.data(), O_APPEND | O_CLOEXEC);
        if (descriptor >= 0) {
            file_.MoveTo(descriptor);
            file_name_ = name;
            file_is_temporary_ = true;
            return;
        }
        screen_.Write("ALARM : global :  can not open logging file: " + name + "\n");
    }
}

void LOGGING::Message(LOGGING_LEVEL level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    MessageOf(level, format, arguments);
    va_end(arguments);
}

void LOGGING::MessageOf(LOGGING_LEVEL level, const char* format, std::va_list arguments) {
    if (level > LOGGING_LEVEL::ALARM)
        throw "LOGGING::Message: logging not allowed in level NO_MESSAGE. "
              "This level is only provided to totally turn off screen logging.";
    const std::string text = Printable(Formatted(format, arguments));
    const std::lock_guard lock(mutex_);
    WriteLine(level, text);
}

void LOGGING::WriteLine(LOGGING_LEVEL level, const std::string& text) {
    const int number = static_cast<int>(level);
    const size_t row = RowOf(number);
    const std::string line = std::string(kTags[row]) + " : " + *prefix_ + text + "\n";
    const bool emphasised = emphasis_ && number > static_cast<int>(LOGGING_LEVEL::QA_WARNING);
    tally_.AddLine(number, text);
    if (level == LOGGING_LEVEL::QA_WARNING) qa_warning_logged_ = true;
    const WRITER writer;
    if (!WRITER::MayWrite()) return;
    if (number >= screen_threshold_) {
        screen_.Write(emphasised ? kEmphasis[row] + line + kEmphasisOff : line);
        if (capture_) captured_lines_.push_back(text);
    }
    if (number >= file_threshold_) file_.Write(line);
}

LOGGING& LOGGING::operator<<(LOGGING_LEVEL level) {
    if (level > LOGGING_LEVEL::ALARM)
        throw "LOGGING::operator << (LOGGING_LEVEL_T): logging not allowed in level NO_MESSAGE. "
              "This level is only provided to totally turn off screen logging.";
    if (level == LOGGING_LEVEL::QA_WARNING) qa_warning_logged_ = true;
    current_level_ = static_cast<int>(level);
    Show(std::string(kTags[RowOf(current_level_)]) + " : " + *prefix_);
    return *this;
}

void LOGGING::Append(std::string_view text) {
    tally_.AddPiece(current_level_, text);
    Show(text);
}

void LOGGING::Show(std::string_view text) {
    const WRITER writer;
    if (!WRITER::MayWrite()) return;
    const int level = current_level_;
    if (level >= screen_threshold_ && !screen_stream_failed_) screen_.Write(text);
    if (level >= file_threshold_) file_.Write(text);
}

LOGGING& LOGGING::operator<<(const char* text) {
    if (text == nullptr)
        screen_stream_failed_ = true;
    else
        Append(text);
    return *this;
}

LOGGING& LOGGING::operator<<(std::string_view value) {
    Append(Printable(value));
    return *this;
}

LOGGING& LOGGING::operator<<(char value) {
    Append(std::string_view(&value, 1));
    return *this;
}

LOGGING& LOGGING::operator<<(int value) {
    return *this << static_cast<long long>(value);
}
LOGGING& LOGGING::operator<<(long value) {
    return *this << static_cast<long long>(value);
}
LOGGING& LOGGING::operator<<(unsigned int value) {
    return *this << static_cast<unsigned long long>(value);
}
LOGGING& LOGGING::operator<<(unsigned long value) {
    return *this << static_cast<unsigned long long>(value);
}

LOGGING& LOGGING::operator<<(long long value) {
    Append(std::to_string(value));
    return *this;
}

LOGGING& LOGGING::operator<<(unsigned long long value) {
    Append(std::to_string(value));
    return *this;
}

LOGGING& LOGGING::operator<<(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    Append(text);
    return *this;
}

void LOGGING::SetScreenThreshold(int level) {
    const std::lock_guard lock(mutex_);
    screen_threshold_ = level;
}

void LOGGING::SetFileThreshold(int level) {
    const std::lock_guard lock(mutex_);
    file_threshold_ = level;
}

bool LOGGING::Takes(LOGGING_LEVEL level) const {
    const int number = static_cast<int>(level);
    return number >= screen_threshold_ || number >= file_threshold_;
}

void LOGGING::SetLogFile(const std::string& file_name) {
    const std::lock_guard lock(mutex_);
    const bool is_present_name = file_name == file_name_;
    if (is_present_name && file_.IsOpen()) return;
    const int next = OpenForAppending(file_name);
    if (next < 0) {
        screen_.Write("ALARM : " + *prefix_ + " :   can not open logging file: " + Printable(file_name) + "\n");
        file_.Close();
        return;
    }
    const bool moves = file_is_temporary_ && !is_present_name;
    const std::string problem = moves ? CopyTemporaryFile(next) : "";
    file_.MoveTo(next);
    const std::string previous = std::exchange(file_name_, file_name);
    if (!moves) return;
    file_is_temporary_ = false;
    if (problem.empty())
        RemoveTemporaryFile(previous);
    else
        WriteLine(LOGGING_LEVEL::INFO, problem);
}

/// @return empty, or the line that tells why the temporary file has to stay
std::string LOGGING::CopyTemporaryFile(int target) const {
    const int source = open(file_name_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (source < 0) return " can not reopen tmp logging file: " + file_name_;
    LOG_OUTPUT output(target);
    char bytes[4096];
    ssize_t count = 0;
    bool complete = true;
    while (complete && ((count = read(source, bytes, sizeof bytes)) > 0 || (count < 0 && errno == EINTR)))
        complete = output.Write(std::string_view(bytes, static_cast<size_t>(std::max<ssize_t>(count, 0))));
    close(source);
    return complete && count == 0 ? "" : " can not copy tmp logging file: " + file_name_;
}

void LOGGING::RemoveTemporaryFile(const std::string& name) {
    if (unlink(name.c_str()) == 0) return;
    const std::string reason = std::strerror(errno);
    WriteLine(LOGGING_LEVEL::INFO, "can not remove tmp file: " + name);
    WriteLine(LOGGING_LEVEL::INFO, "reason: " + reason);
}

std::string LOGGING::LogFileName() const {
    const std::lock_guard lock(mutex_);
    return file_name_;
}

bool LOGGING::HasTemporaryFile() const {
    const std::lock_guard lock(mutex_);
    return file_is_temporary_;
}

void LOGGING::SetPrefix(const std::string& text) {
    const std::lock_guard lock(mutex_);
    prefixes_.push_back(Printable(text) + " : ");
    prefix_ = &prefixes_.back();
}

void LOGGING::SetCapture(bool on) {
    const std::lock_guard lock(mutex_);
    capture_ = on;
}

std::vector<std::string> LOGGING::CapturedLines() const {
    const std::lock_guard lock(mutex_);
    return captured_lines_;
}

void LOGGING::Header(const VERSION_RECORD& version, const std::string& configuration_file) {
    const std::lock_guard lock(mutex_);
    WriteLine(LOGGING_LEVEL::INFO, "");
    WriteLine(LOGGING_LEVEL::INFO, kRule);
    WriteLine(LOGGING_LEVEL::INFO,
              Printable(version.program_name) + " " + version.version + " - " + version.description);
    WriteLine(LOGGING_LEVEL::INFO, "");
    WriteLine(LOGGING_LEVEL::INFO, kRule);
    WriteLine(LOGGING_LEVEL::INFO, "compile date: " + version.compile_date + "  compiled by: " + version.builder);
    WriteLine(LOGGING_LEVEL::INFO,
              "start time: " + LocalTimeText(std::time(nullptr)) + "  hostname: " + Printable(HostName()));
    WriteLine(LOGGING_LEVEL::INFO, "started by: " + Printable(StartedBy()));
    WriteLine(LOGGING_LEVEL::INFO, "using configuration file " + Printable(configuration_file));
    WriteLine(LOGGING_LEVEL::DEBUG, "full version: " + version.full_version);
}

void LOGGING::Footer() {
    const std::lock_guard lock(mutex_);
    const std::time_t now = std::time(nullptr);
    WriteLine(LOGGING_LEVEL::INFO, ExecutionTimeText(now - opening_time_));
    WriteLine(LOGGING_LEVEL::INFO, "end time: " + LocalTimeText(now));
    WriteLine(LOGGING_LEVEL::INFO, kRule);
}

void LOGGING::Flush() {
    std::fflush(stdout);
}

void LOGGING::BeginEmergency() noexcept {
    constexpr int kPatienceMs = 200;
    constexpr timespec kOneMillisecond = {0, 1'000'000};
    emergency = true;
    // Bounded, because the writer may never come to its end: its terminal may be stopped, its pipe full. The handler's
    // own thread may have been interrupted within a write, too; that one is not waited for. Whoever holds the mutex
    // without writing, or waits for it, writes nothing any more, hence the mutex itself need not be taken.
    for (int waited_ms = 0; waited_ms < kPatienceMs && active_writers > this_thread_writes; ++waited_ms)
        nanosleep(&kOneMillisecond, nullptr);
}

void LOGGING::EmergencyLine(LOGGING_LEVEL level, const char* text) noexcept {
    constexpr int kPatienceMs = 500;
    LOGGING* const logging = the_logging;
    if (logging == nullptr) return;
    const int number = static_cast<int>(level);
    char line[1024];
    size_t length = 0;
    const auto add = [&line, &length](const char* part) {
        while (*part != '\0' && length < 1000) line[length++] = *part++;
    };
    add(kTags[RowOf(number)]);
    add(" : ");
    add(logging->prefix_.load()->c_str());
    add(text);
    line[length++] = '\n';
    if (number >= logging->screen_threshold_) logging->screen_.WriteLineFromHandler({line, length}, kPatienceMs);
    if (number >= logging->file_threshold_) logging->file_.WriteLineFromHandler({line, length}, kPatienceMs);
}

void HardStop() {
    Log().Flush();
    _exit(1);
}
