#include "lib/baselib/logging/log_texts.h"

#include <array>
#include <cstdio>
#include <ctime>

std::string Printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    unsigned char previous = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool in_upper_controls = byte >= 0x80 && byte < 0xa0;
        const bool alone_or_after_c2 = previous < 0x80 || previous == 0xc2;
        if (byte < 0x20 || byte == 0x7f || (in_upper_controls && alone_or_after_c2)) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            shown += escaped;
        } else {
            shown += c;
        }
        previous = byte;
    }
    return shown;
}

std::string ExecutionTimeText(long long duration_s) {
    struct PART {
        long long seconds;
        const char* unit;
    };
    constexpr PART kParts[] = {{86400, " day(s)"}, {3600, " hour(s)"}, {60, " minute(s)"}, {1, " second(s)"}};
    std::string text = "execution time:";
    if (duration_s <= 0) return text + " less than 1 second";
    for (const PART& part : kParts) {
        if (duration_s / part.seconds > 0) text += " " + std::to_string(duration_s / part.seconds) + part.unit;
        duration_s %= part.seconds;
    }
    return text;
}

// No streams: without memory they would give the beginning of the text and say nothing.

std::string LocalTimeText(std::time_t seconds_since_epoch) {
    std::tm local = {};
    localtime_r(&seconds_since_epoch, &local);
    char text[100];
    return {text, std::strftime(text, sizeof text, "%a %b %e %H:%M:%S %Y", &local)};
}

std::string LocalTimeStamp(std::time_t seconds_since_epoch) {
    std::tm local = {};
    localtime_r(&seconds_since_epoch, &local);
    char text[100];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local)};
}

int LevelFromName(std::string_view name) {
    constexpr std::array<std::string_view, 9> kNames = {"TRACE",   "DEBUG",     "PARAMETER", "INFO",      "QA_WARNING",
                                                        "WARNING", "EXCEPTION", "ALARM",     "NO_MESSAGE"};
    for (size_t i = 0; i < kNames.size(); ++i)
        if (kNames[i] == name) return static_cast<int>(i) + 1;
    return 10;
}
