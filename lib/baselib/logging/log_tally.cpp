#include "lib/baselib/logging/log_tally.h"

#include <algorithm>

namespace {

constexpr int kQaWarning = 5;
constexpr int kWarning = 6;
constexpr std::size_t kMostErrors = 20;
constexpr std::size_t kMostWarnings = 50;

}  // namespace

void LOG_TALLY::Count(int level, std::string_view text) {
    if (level == kQaWarning || level == kWarning) return CountWarning(text);
    ++error_count_;
    errors_.emplace_back(text);
    if (errors_.size() > kMostErrors) errors_.pop_front();
}

void LOG_TALLY::CountWarning(std::string_view text) {
    ++warnings_;
    if (first_warnings_.size() == kMostWarnings) return;
    if (std::ranges::find(first_warnings_, text) == first_warnings_.end()) first_warnings_.emplace_back(text);
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

std::vector<std::string> LOG_TALLY::FirstWarnings() const {
    const std::lock_guard lock(mutex_);
    return first_warnings_;
}

long long LOG_TALLY::Errors() const {
    const std::lock_guard lock(mutex_);
    return error_count_;
}

std::vector<std::string> LOG_TALLY::LastErrors() const {
    const std::lock_guard lock(mutex_);
    return {errors_.begin(), errors_.end()};
}
