#include "app/report/utc_text.h"

#include <chrono>

namespace {

char* Put(char* to, unsigned number, int digits, char behind) noexcept {
    for (int i = digits - 1; i >= 0; --i, number /= 10) to[i] = static_cast<char>('0' + number % 10);
    to[digits] = behind;
    return to + digits + 1;
}

}  // namespace

void UtcText(std::time_t seconds_since_epoch, char (&text)[kUtcTextBytes]) noexcept {
    const std::chrono::sys_seconds instant{std::chrono::seconds(seconds_since_epoch)};
    const auto midnight = std::chrono::floor<std::chrono::days>(instant);
    const std::chrono::year_month_day date{midnight};
    const auto second_of_day = static_cast<unsigned>((instant - midnight).count());
    char* to = Put(text, static_cast<unsigned>(static_cast<int>(date.year())), 4, '-');
    to = Put(to, static_cast<unsigned>(date.month()), 2, '-');
    to = Put(to, static_cast<unsigned>(date.day()), 2, 'T');
    to = Put(to, second_of_day / 3600, 2, ':');
    to = Put(to, second_of_day / 60 % 60, 2, ':');
    to = Put(to, second_of_day % 60, 2, 'Z');
    *to = '\0';
}
