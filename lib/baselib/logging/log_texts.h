/// \file log_texts.h
/// The texts that lines are made of. Threads: no shared state.

#pragma once

#include <ctime>
#include <string>
#include <string_view>

/// The text with every control byte shown as \xNN (also the two-byte forms U+0080..U+009F, which terminals obey), so
/// that a value from outside can neither forge a line nor colour the terminal. Other UTF-8 text passes.
[[nodiscard]] std::string Printable(std::string_view text);

/// "execution time:" and each non-zero part, or " less than 1 second"; a clock set back counts as 0 s.
[[nodiscard]] std::string ExecutionTimeText(long long duration_s);

/// Local time as "Sat Nov 21 07:44:26 2026".
[[nodiscard]] std::string LocalTimeText(std::time_t seconds_since_epoch);

/// Local time as "2026-11-21T07:44:26".
[[nodiscard]] std::string LocalTimeStamp(std::time_t seconds_since_epoch);

/// The number of a level name as `lfl` and `lsl` give it; 10, which silences an output, for an unknown name.
[[nodiscard]] int LevelFromName(std::string_view name);
