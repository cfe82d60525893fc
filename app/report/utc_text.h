/// \file utc_text.h
/// UTC as ISO 8601 text, in a signal handler too: the C library's own conversions may lock.

#pragma once

#include <cstddef>
#include <ctime>

inline constexpr std::size_t kUtcTextBytes = 21;

/// "2026-11-21T18:40:07Z", years 1970 to 9999.
void UtcText(std::time_t seconds_since_epoch, char (&text)[kUtcTextBytes]) noexcept;
