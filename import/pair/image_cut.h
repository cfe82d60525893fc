/// \file image_cut.h
/// The part of the master's image that is to be simulated: lines and samples, counted from 0 in the image of its pool.

#pragma once

#include <string>

/// From first up to, not including, end.
struct HALF_OPEN_RANGE {
    long long first = 0;
    long long end = 0;

    [[nodiscard]] long long Count() const { return end - first; }
};

/// "A:B", either of which may be missing; an empty text means all. A negative number counts from the end.
/// @param option  for messages: "--lines"
/// @throws COMPANION_ERROR for a text of another form and for a range that is empty or reaches beyond the count
[[nodiscard]] HALF_OPEN_RANGE ParseRange(const std::string& option, const std::string& text, long long count);
