#include "app/report/json_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

/// Length of the UTF-8 sequence at the text's beginning; 0 when there is none (RFC 3629: no surrogates, no overlong
/// forms).
std::size_t SequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto follows = [&](std::size_t i) { return (byte(i) & 0xc0U) == 0x80U; };
    if (byte(0) < 0x80U) return 1;
    if (byte(0) >= 0xc2U && byte(0) <= 0xdfU) return follows(1) ? 2 : 0;
    if (byte(0) >= 0xe0U && byte(0) <= 0xefU) {
        const bool overlong = byte(0) == 0xe0U && byte(1) < 0xa0U;
        const bool surrogate = byte(0) == 0xedU && byte(1) > 0x9fU;
        return follows(1) && follows(2) && !overlong && !surrogate ? 3 : 0;
    }
    if (byte(0) >= 0xf0U && byte(0) <= 0xf4U) {
        const bool overlong = byte(0) == 0xf0U && byte(1) < 0x90U;
        const bool beyond = byte(0) == 0xf4U && byte(1) > 0x8fU;
        return follows(1) && follows(2) && follows(3) && !overlong && !beyond ? 4 : 0;
    }
    return 0;
}

void AppendEscaped(char c, std::string& to) {
    if (c == '"' || c == '\\') {
        to += '\\';
        to += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
        char code[8];
        std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
        to += code;
    } else {
        to += c;
    }
}

}  // namespace

std::string JsonString(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const std::size_t length = SequenceLength(text);
        if (length == 1)
            AppendEscaped(text[0], quoted);
        else
            quoted += length == 0 ? std::string_view("\xef\xbf\xbd") : text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return quoted + "\"";
}

void JSON_TEXT::StartLine(std::string_view key) {
    if (!first_) text_ += ',';
    if (depth_ > 0) text_ += "\n" + std::string(2 * static_cast<std::size_t>(depth_), ' ');
    if (!key.empty()) text_ += JsonString(key) + ": ";
    first_ = false;
}

void JSON_TEXT::AddRaw(std::string_view key, std::string_view value) {
    StartLine(key);
    text_ += value;
}

void JSON_TEXT::Add(std::string_view key, double number) {
    if (!std::isfinite(number)) return AddNull(key);
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    AddRaw(key, {digits, static_cast<std::size_t>(end.ptr - digits)});
}

void JSON_TEXT::Begin(std::string_view key, char bracket) {
    StartLine(key);
    text_ += bracket;
    ++depth_;
    first_ = true;
}

void JSON_TEXT::End(char bracket) {
    --depth_;
    if (!first_) text_ += "\n" + std::string(2 * static_cast<std::size_t>(depth_), ' ');
    text_ += bracket;
    first_ = false;
}
