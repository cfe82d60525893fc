/// \file report_file.h
/// The report's file: nothing but an earlier report is replaced; written whole under a temporary name and renamed, or
/// not at all. Everything here is async-signal-safe once the names are there: a fatal signal's handler leaves the
/// report, too.

#pragma once

#include <string>
#include <string_view>

/// How a run ended.
struct RUN_END {
    int exit_status = 0;
    std::string_view last_error;  ///< as a JSON string, quotes included; empty: none
};

class REPORT_FILE {
  public:
    /// @param path  links are followed
    explicit REPORT_FILE(const std::string& path);

    /// Begins with the document so far, which ends inside the outermost object, and adds "end", "exit_status" and
    /// "last_error" to it.
    /// @return 0, or the errno value; what was at the path is then still there
    [[nodiscard]] int Write(std::string_view document, const RUN_END& end) const noexcept;

  private:
    std::string path_;
    std::string temporary_;
    bool usable_;
};

/// Why the report could not be written to this path; empty when it could. Nothing is created.
[[nodiscard]] std::string ReportPathProblem(const std::string& path);
