/// \file progress_line.h
/// How far a long piece of work is, for a person at a terminal: one short line on standard error that is overwritten.
/// Nothing at all where standard error is no terminal. The line leaves the cursor at its beginning and is shorter than
/// any line of the log, which then covers it. Threads: Done() from any number of threads; the rest belongs to one.

#pragma once

#include <atomic>

class PROGRESS_LINE {
  public:
    /// @param total  pieces of work, at least 0
    explicit PROGRESS_LINE(long long total);
    /// Wipes the line.
    ~PROGRESS_LINE();
    PROGRESS_LINE(const PROGRESS_LINE&) = delete;
    PROGRESS_LINE& operator=(const PROGRESS_LINE&) = delete;

    /// One piece more is done. The line is written when the percentage has changed.
    void Done();

  private:
    const bool shown_;
    const long long total_;
    std::atomic<long long> done_{0};
    std::atomic<int> percent_shown_{-1};
};
