#include "lib/baselib/logging/logging.h"

#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdlib>
#include <ctime>

namespace {

constexpr std::array<const char*, 9> kTags = {"LEV_?", "TRACE", "DEBUG", "PARAM", "INFO ",
                                              "QA_WA", "WARN ", "EXCEP", "ALARM"};
constexpr std::array<const char*, 9> kEmphasis = {"", "", "", "", "", "", "\033[4m", "\033[1m", "\033[7m"};
constexpr const char* kRule = "***********************************************************";

std::string Printable(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            shown += escaped;
        } else {
            shown += c;
        }
    }
    return shown;
}

std::string LocalTime() {
    const std::time_t now = std::time(nullptr);
    char text[64] = "";
    ctime_r(&now, text);
    std::string line = text;
    if (!line.empty() && line.back() == '\n') line.pop_back();
    return line;
}

}  // namespace

LOGGING& LOGGING::Get() {
    static LOGGING logging;
    return logging;
}

LOGGING::LOGGING() : opening_time_s_(std::time(nullptr)) {
    for (const char* directory : {"/tmp/", "/var/tmp/", "./"}) {
        std::string name = std::string(directory) + "log.XXXXXX";
        const int descriptor = mkstemp(name.data());
        if (descriptor >= 0) {
            file_ = fdopen(descriptor, "a");
            file_name_ = name;
            return;
        }
        std::printf("ALARM : global :  can not open logging file: %s\n", name.c_str());
    }
}

LOGGING::~LOGGING() {
    if (file_ != nullptr) std::fclose(file_);
}

void LOGGING::Message(LOGGING_LEVEL level, const char* format, ...) {
    if (level > LOGGING_LEVEL::ALARM)
        throw "LOGGING::Message: logging not allowed in level NO_MESSAGE. "
              "This level is only provided to totally turn off screen logging.";
    std::va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    const std::string line = length < 0 ? format : Printable(std::string_view(text, static_cast<size_t>(length)));
    if (length >= 0) std::free(text);
    const std::lock_guard lock(mutex_);
    WriteLine(level, line);
}

void LOGGING::WriteLine(LOGGING_LEVEL level, const std::string& text) {
    const auto number = static_cast<size_t>(level);
    if (static_cast<int>(level) >= screen_threshold_) {
        std::printf("%s%s : %s%s\n%s", kEmphasis[number], kTags[number], prefix_.c_str(), text.c_str(),
                    level > LOGGING_LEVEL::QA_WARNING ? "\033[0m" : "");
        std::fflush(stdout);
    }
    if (file_ != nullptr && static_cast<int>(level) >= file_threshold_) {
        std::fprintf(file_, "%s : %s%s\n", kTags[number], prefix_.c_str(), text.c_str());
        std::fflush(file_);
    }
}

LOGGING& LOGGING::operator<<(LOGGING_LEVEL level) {
    if (level > LOGGING_LEVEL::ALARM)
        throw "LOGGING::operator << (LOGGING_LEVEL_T): logging not allowed in level NO_MESSAGE. "
              "This level is only provided to totally turn off screen logging.";
    current_level_ = static_cast<int>(level);
    Append(std::string(kTags[static_cast<size_t>(level)]) + " : " + prefix_);
    return *this;
}

void LOGGING::Append(std::string_view text) {
    if (current_level_ >= screen_threshold_) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
    if (file_ != nullptr && current_level_ >= file_threshold_) std::fwrite(text.data(), 1, text.size(), file_);
}

LOGGING& LOGGING::operator<<(const char* text) {
    if (text != nullptr) Append(text);
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

LOGGING& LOGGING::operator<<(int value) { return *this << static_cast<long long>(value); }
LOGGING& LOGGING::operator<<(long value) { return *this << static_cast<long long>(value); }

LOGGING& LOGGING::operator<<(long long value) {
    Append(std::to_string(value));
    return *this;
}

LOGGING& LOGGING::operator<<(unsigned long value) {
    Append(std::to_string(value));
    return *this;
}

LOGGING& LOGGING::operator<<(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    Append(text);
    return *this;
}

void LOGGING::SetScreenThreshold(int level) { screen_threshold_ = level; }
void LOGGING::SetFileThreshold(int level) { file_threshold_ = level; }

void LOGGING::SetLogFile(const std::string& file_name) {
    const std::lock_guard lock(mutex_);
    FILE* next = std::fopen(file_name.c_str(), "a");
    if (next == nullptr) {
        std::printf("ALARM : %s :  can not open logging file: %s\n", prefix_.c_str(), file_name.c_str());
        return;
    }
    if (file_ != nullptr) std::fclose(file_);
    if (FILE* previous = std::fopen(file_name_.c_str(), "r")) {
        for (int c = std::fgetc(previous); c != EOF; c = std::fgetc(previous)) std::fputc(c, next);
        std::fclose(previous);
        unlink(file_name_.c_str());
    }
    file_ = next;
    file_name_ = file_name;
}

std::string LOGGING::LogFileName() const {
    const std::lock_guard lock(mutex_);
    return file_name_;
}

void LOGGING::SetPrefix(const std::string& text) {
    const std::lock_guard lock(mutex_);
    prefix_ = text + " : ";
}

void LOGGING::Header(const VERSION_RECORD& version, const std::string& configuration_file) {
    const std::lock_guard lock(mutex_);
    WriteLine(LOGGING_LEVEL::INFO, kRule);
    WriteLine(LOGGING_LEVEL::INFO, version.program_name + " " + version.version + " - " + version.description);
    WriteLine(LOGGING_LEVEL::INFO, "start time: " + LocalTime());
    WriteLine(LOGGING_LEVEL::INFO, "using configuration file " + Printable(configuration_file));
}

void LOGGING::Footer() {
    const std::lock_guard lock(mutex_);
    WriteLine(LOGGING_LEVEL::INFO, "end time: " + LocalTime());
    WriteLine(LOGGING_LEVEL::INFO, kRule);
}
