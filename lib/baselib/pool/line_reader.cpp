#include "lib/baselib/pool/line_reader.h"

#include <cerrno>
#include <cstring>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr std::string_view kTokenEnds = "\t\n\r ";

}  // namespace

void LINE_READER::Start(FILE* stream, const std::string& file_name, long long offset, long long line_number) {
    stream_ = stream;
    file_name_ = file_name;
    line_.clear();
    cursor_ = 0;
    offset_ = offset;
    line_number_ = line_number - 1;
    std::clearerr(stream);  // a failure of an earlier lookup
    // fflush drops what the stream read ahead: another object may have rewritten the file since.
    if (std::fflush(stream) != 0 || fseeko(stream, offset, SEEK_SET) != 0) Fail();
}

bool LINE_READER::Next() {
    offset_ += static_cast<long long>(line_.size());
    line_.clear();
    cursor_ = 0;
    for (int c = getc_unlocked(stream_); c != EOF; c = getc_unlocked(stream_)) {
        const bool is_end = c == '\n' || c == '\r';
        if (!is_end && line_.size() == kPoolLineLength) {
            std::ungetc(c, stream_);
            break;
        }
        line_ += static_cast<char>(c);
        if (c == '\r') {
            const int next = getc_unlocked(stream_);
            if (next == '\n') {
                line_ += '\n';
            } else if (next != EOF) {
                std::ungetc(next, stream_);
            }
        }
        if (is_end) break;
    }
    if (std::ferror(stream_) != 0) Fail();
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

void LINE_READER::Fail() const {
    Log().Message(LOGGING_LEVEL::ALARM, "can not read parameter file %s: %s", file_name_.c_str(), std::strerror(errno));
    throw ERROR_CAN_NOT_READ_FILE();
}

bool IsEntryLine(std::string_view line) {
    return !line.empty() && line.front() != '#' && kTokenEnds.find(line.front()) == std::string_view::npos;
}

std::string_view KeyOfLine(std::string_view line) {
    return line.substr(0, std::min(line.find_first_of(kTokenEnds), kPoolKeyLength));
}
