/// \file text_lines.h
/// A text file line by line, with the line numbers that messages need.

#pragma once

#include <string>
#include <vector>

#include "companions/companion_error.h"

class TEXT_LINES {
  public:
    TEXT_LINES(std::string file, const std::string& content) : file_(std::move(file)), content_(content) {}

    /// The next line that is not blank, without blanks around it. @return false at the end
    [[nodiscard]] bool Next();
    [[nodiscard]] const std::string& Line() const { return line_; }
    [[nodiscard]] long long Number() const { return number_; }
    [[nodiscard]] VALUE_PLACE Place() const { return {file_, "line " + std::to_string(number_)}; }
    [[noreturn]] void Refuse(const std::string& expected) const { RefuseValue(Place(), line_, expected); }

  private:
    std::string file_;
    const std::string& content_;
    std::size_t position_ = 0;
    std::string line_;
    long long number_ = 0;
};

/// The words between runs of blanks; the fields between single separators, which may be empty.
[[nodiscard]] std::vector<std::string> WordsOf(const std::string& line);
[[nodiscard]] std::vector<std::string> FieldsOf(const std::string& line, char separator);
