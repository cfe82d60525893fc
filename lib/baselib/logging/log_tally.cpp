#include "lib/baselib/logging/log_tally.h"

namespace {

constexpr int kQaWarning = 5;
constexpr int kWarning = 6;
constexpr std::size_t kMostErrors = 20;

}  // namespace

void LOG_TALLY::Count(int level, std::string_view text) {
    if (level == kQaWarning || level == kWarning) ++warnings_;
    if (level <= kWarning) return;
    ++error_count_;
    errors_.emplace_back(text);
    if (errors_.size() > kMostErrors) errors_.pop_front();
}

void LOG_TALLY::AddLine(int level, std::string_view text) {
    if (level < kQaWarning) return;
    const std::lock_guard lock(mutex_);
    Count(level, text);
}

void LOG_TALLY::AddPiece(int level, std::string_view text) {
    if (level < kQaWarning) return;
    const std::lock_guard lock(mutex_);
    open_line_ += text;
    if (!open_line_.ends_with('\n')) return;
    open_line_.pop_back();
    Count(level, open_line_);
    open_line_.clear();
}

long long LOG_TALLY::Warnings() const {
    const std::lock_guard lock(mutex_);
    return warnings_;
}

long long LOG_TALLY::Errors() const {
    const std::lock_guard lock(mutex_);
    return error_count_;
}

std::vector<std::string> LOG_TALLY::LastErrors() const {
    const std::lock_guard lock(mutex_);
    return {errors_.begin(), errors_.end()};
}
