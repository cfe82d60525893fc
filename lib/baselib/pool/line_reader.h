/// \file line_reader.h
/// Lines and tokens of a pool file.
///
///   line       := text end
///   text       := at most 1024 characters; what is longer is read as further lines
///   end        := "\n" | "\r\n" | "\r", or the end of the file
///   token      := characters without blank, tab, "\r", "\n"
///
/// The reader looks at a text that must outlive it and its lines.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr std::size_t kPoolLineLength = 1024;  ///< characters of a line, its end not counted
inline constexpr std::size_t kPoolKeyLength = 100;

class LINE_READER {
  public:
    LINE_READER() = default;
    /// Starts at this place of the text. @param line_number number of the line that starts there, from 1
    void Start(std::string_view text, std::size_t offset, long long line_number);

    /// Reads the next line, its end included, and puts the cursor at its first character.
    /// @return false at the end of the text
    bool Next();

    /// The token at or after the cursor, which moves behind it. @return false when the line has no further token
    bool Token(std::string& token);
    /// The text in double quotes at or after the cursor, which moves behind it. Behind the closing quote a token ends.
    /// @return false when there is none
    bool Quoted(std::string& text);

    [[nodiscard]] std::size_t Cursor() const { return cursor_; }
    void SetCursor(std::size_t cursor) { cursor_ = cursor; }

    [[nodiscard]] std::string_view Line() const { return line_; }
    /// Where the line starts in the text, in bytes.
    [[nodiscard]] std::size_t Offset() const { return offset_; }
    [[nodiscard]] long long LineNumber() const { return line_number_; }

  private:
    void SkipSpace();

    std::string_view text_;
    std::string_view line_;
    std::size_t cursor_ = 0;
    std::size_t offset_ = 0;
    long long line_number_ = 0;
};

/// Blank and comment lines are no entries: their first character is a tab, line end, blank or "#".
[[nodiscard]] bool IsEntryLine(std::string_view line);
/// The key of an entry line: its first word, at most 100 characters.
[[nodiscard]] std::string_view KeyOfLine(std::string_view line);
