#include "lib/baselib/pool/line_reader.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::string_view kTokenEnds = "\t\n\r ";

}  // namespace

void LINE_READER::Start(std::string_view text, std::size_t offset, long long line_number) {
    text_ = text;
    line_ = {};
    cursor_ = 0;
    offset_ = offset;
    line_number_ = line_number - 1;
}

bool LINE_READER::Next() {
    offset_ += line_.size();
    cursor_ = 0;
    const std::string_view rest = text_.substr(std::min(offset_, text_.size()));
    std::size_t length = std::min(rest.substr(0, kPoolLineLength + 1).find_first_of("\n\r"), kPoolLineLength);
    if (length < rest.size()) {
        const char end = rest[length];
        if (end == '\n' || end == '\r') ++length;
        if (end == '\r' && length < rest.size() && rest[length] == '\n') ++length;
    }
    line_ = rest.substr(0, length);
    if (line_.empty()) return false;
    ++line_number_;
    return true;
}

void LINE_READER::SkipSpace() {
    while (cursor_ < line_.size() && std::strchr("\t\r ", line_[cursor_]) != nullptr && line_[cursor_] != '\0')
        ++cursor_;
}

bool LINE_READER::Token(std::string& token) {
    SkipSpace();
    const std::size_t end = std::min(line_.find_first_of(kTokenEnds, cursor_), line_.size());
    token = line_.substr(cursor_, end - cursor_);
    cursor_ = end;
    return !token.empty();
}

bool LINE_READER::Quoted(std::string& text) {
    SkipSpace();
    if (cursor_ >= line_.size() || line_[cursor_] != '"') return false;
    const std::size_t end = line_.find('"', cursor_ + 1);
    if (end == std::string::npos) return false;
    if (end + 1 < line_.size() && kTokenEnds.find(line_[end + 1]) == std::string_view::npos) return false;
    text = line_.substr(cursor_ + 1, end - cursor_ - 1);
    cursor_ = end + 1;
    return true;
}

bool IsEntryLine(std::string_view line) {
    return !line.empty() && line.front() != '#' && kTokenEnds.find(line.front()) == std::string_view::npos;
}

std::string_view KeyOfLine(std::string_view line) {
    return line.substr(0, std::min(line.find_first_of(kTokenEnds), kPoolKeyLength));
}
