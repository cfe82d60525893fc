/// \file hexadecimal.h
/// Bytes of files, written as their formats' documents write them.

#pragma once

#include <string>

/// "59a6 6a95" is four bytes; blanks do not count.
inline std::string Bytes(const std::string& hexadecimal) {
    std::string digits;
    for (const char c : hexadecimal) {
        if (c != ' ' && c != '\n') digits += c;
    }
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}
