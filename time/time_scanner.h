/// \file time_scanner.h
/// Tokenizer of time texts: the primitives from which the UTC and MET scanners are built.
/// The text ends at its size, at a NUL or at a line feed. Failures are thrown as const char* messages; the scanners
/// turn them into exceptions.   Threads: a scanner belongs to one thread.

#pragma once

#include <cstddef>
#include <optional>
#include <string>

enum class TIME_TOKEN_TYPE : int {
    SIGN_MINUS = 0,  ///< '-', value -1
    SIGN_PLUS = 1,   ///< '+', value +1
    WHITE = 2,       ///< blanks and tabs
    NUMBER = 3,      ///< digits; value saturates at the largest int, the text keeps all digits
    POINT = 4,
    SEPARATOR = 5,  ///< one of / : T and backslash
    MONTH = 6,      ///< month name, value 1 to 12
    ZULU = 7        ///< 'Z'
};

/// "token_number" and so on, for log lines. @throws const char* for any other code
[[nodiscard]] const char* TokenTypeText(TIME_TOKEN_TYPE type);

struct TIME_TOKEN {
    TIME_TOKEN_TYPE type = TIME_TOKEN_TYPE::WHITE;
    int value = 0;
    std::string text;  ///< at most 128 characters
};

struct MILLI_AND_MICRO_SECONDS {
    int milliseconds = 0;
    int microseconds = 0;
};

class TIME_SCANNER {
  public:
    explicit TIME_SCANNER(std::string text) : text_(std::move(text)) {}

    /// The next token that is not white; false at the end of the text.
    /// @throws ERROR_ARGUMENT for letters that are no month name
    bool GetToken(TIME_TOKEN& token);
    /// Puts one token back, to be read again.
    void UngetToken(const TIME_TOKEN& token);

    /// '-' or '+'; without a sign '+', and the next token stays.
    char GetSign();
    int GetNumber();
    /// A separator or '-'.
    void GetSeparator();
    /// A month name or a number, which the caller has to check.
    int GetMonth();
    /// True after a point, false at the end of the text or at 'Z' followed by blanks only.
    bool GetPoint();
    /// Digits of a fraction of a second; those beyond the sixth are dropped. Both 0 at the end of the text.
    MILLI_AND_MICRO_SECONDS GetMilliAndMicroSeconds();
    /// Only blanks may follow, or 'Z' and blanks: an offset or a stray character must not go unnoticed.
    void ExpectEnd();

  private:
    bool ReadToken(TIME_TOKEN& token);
    bool AtEnd() const;
    std::string TakeRun(const char* set);
    TIME_TOKEN NextToken();

    std::string text_;
    size_t position_ = 0;
    std::optional<TIME_TOKEN> unget_;
};

/// The number of a month name. @throws ERROR_ARGUMENT, after logging
[[nodiscard]] int MonthFromText(const std::string& text);
