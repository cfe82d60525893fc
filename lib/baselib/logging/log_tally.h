/// \file log_tally.h
/// What a run said that its report or its check repeats: how many warnings and which, and the last errors. Lines count
/// whether they are shown or not. Threads: any.

#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

class LOG_TALLY {
  public:
    /// A whole line, by the number of its level.
    void AddLine(int level, std::string_view text);
    /// A piece of a line of the stream form, which its "\n" ends.
    void AddPiece(int level, std::string_view text);

    [[nodiscard]] long long Warnings() const;
    /// The texts of the first warnings, each once; 50 at most.
    [[nodiscard]] std::vector<std::string> FirstWarnings() const;
    /// Lines at EXCEPTION and ALARM so far.
    [[nodiscard]] long long Errors() const;
    /// The texts of the last lines at EXCEPTION and ALARM, the oldest first; 20 at most.
    [[nodiscard]] std::vector<std::string> LastErrors() const;

  private:
    void Count(int level, std::string_view text);
    void CountWarning(std::string_view text);

    mutable std::mutex mutex_;
    long long warnings_ = 0;
    std::vector<std::string> first_warnings_;
    long long error_count_ = 0;
    std::deque<std::string> errors_;
    std::string open_line_;
};
