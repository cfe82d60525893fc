#include "time/time_scanner.h"

#include <cstring>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "time/calendar.h"

namespace {

constexpr size_t kMostTokenCharacters = 128;
constexpr const char* kDigits = "0123456789";
constexpr const char* kWhite = " \t";
constexpr const char* kMonthStart = "ADFJMNOS";
constexpr const char* kMonthLetters = "ABCDEFGJLMNOPRSTUVY";
constexpr const char* kSeparators = "/:T\\";

constexpr const char* kTokenTypeTexts[] = {"token_sign_minus", "token_sign_plus", "token_white", "token_number",
                                           "token_point",      "token_separator", "token_month", "token_zulu"};

bool IsOneOf(char c, const char* set) {
    return c != '\0' && std::strchr(set, c) != nullptr;
}

int SaturatedValue(const std::string& digits) {
    constexpr int kLargest = std::numeric_limits<int>::max();
    long long value = 0;
    for (const char digit : digits) {
        value = value * 10 + (digit - '0');
        if (value > kLargest) return kLargest;
    }
    return static_cast<int>(value);
}

}  // namespace

const char* TokenTypeText(TIME_TOKEN_TYPE type) {
    const int code = static_cast<int>(type);
    if (code < 0 || code >= static_cast<int>(std::size(kTokenTypeTexts))) {
        throw "can not convert unregistered tokentype to string";
    }
    return kTokenTypeTexts[code];
}

int MonthFromText(const std::string& text) {
    const int month = MonthNumber(text.c_str());
    if (month == 0) {
        Log() << LOGGING_LEVEL::EXCEPTION << "TIME_SCANNER: can not convert >> " << text << " << to month\n";
        throw ERROR_ARGUMENT();
    }
    return month;
}

bool TIME_SCANNER::AtEnd() const {
    return position_ >= text_.size() || text_[position_] == '\0' || text_[position_] == '\n';
}

std::string TIME_SCANNER::TakeRun(const char* set) {
    const size_t start = position_;
    while (position_ < text_.size() && IsOneOf(text_[position_], set)) ++position_;
    const size_t length = position_ - start;
    if (length > kMostTokenCharacters && set != kWhite) throw "TIME: scanner: token too long";
    return text_.substr(start, length);
}

TIME_TOKEN TIME_SCANNER::NextToken() {
    const char c = text_[position_];
    if (IsOneOf(c, kDigits)) {
        const std::string digits = TakeRun(kDigits);
        return {TIME_TOKEN_TYPE::NUMBER, SaturatedValue(digits), digits};
    }
    if (IsOneOf(c, kWhite)) return {TIME_TOKEN_TYPE::WHITE, 0, TakeRun(kWhite)};
    if (IsOneOf(c, kMonthStart)) {
        const std::string name = TakeRun(kMonthLetters);
        return {TIME_TOKEN_TYPE::MONTH, MonthFromText(name), name};
    }
    ++position_;
    const std::string text(1, c);
    if (c == '-') return {TIME_TOKEN_TYPE::SIGN_MINUS, -1, text};
    if (c == '+') return {TIME_TOKEN_TYPE::SIGN_PLUS, 1, text};
    if (c == '.') return {TIME_TOKEN_TYPE::POINT, 0, text};
    if (c == 'Z') return {TIME_TOKEN_TYPE::ZULU, 0, text};
    if (IsOneOf(c, kSeparators)) return {TIME_TOKEN_TYPE::SEPARATOR, 0, text};
    throw "TIME: scanner: unhandled character";
}

bool TIME_SCANNER::ReadToken(TIME_TOKEN& token) {
    if (unget_) {
        token = *unget_;
        unget_.reset();
        return true;
    }
    if (AtEnd()) return false;
    token = NextToken();
    return true;
}

bool TIME_SCANNER::GetToken(TIME_TOKEN& token) {
    do {
        if (!ReadToken(token)) return false;
    } while (token.type == TIME_TOKEN_TYPE::WHITE);
    return true;
}

void TIME_SCANNER::UngetToken(const TIME_TOKEN& token) {
    if (unget_) throw "TIME: scanner: internal error unget buffer overflow";
    unget_ = token;
}

char TIME_SCANNER::GetSign() {
    TIME_TOKEN token;
    if (!GetToken(token)) return '+';
    if (token.type == TIME_TOKEN_TYPE::SIGN_MINUS) return '-';
    if (token.type != TIME_TOKEN_TYPE::SIGN_PLUS) UngetToken(token);
    return '+';
}

int TIME_SCANNER::GetNumber() {
    TIME_TOKEN token;
    if (!GetToken(token)) throw "TIME: scanner: unexpected end of string";
    if (token.type != TIME_TOKEN_TYPE::NUMBER) {
        Log().Message(LOGGING_LEVEL::EXCEPTION, "found token: %s", TokenTypeText(token.type));
        throw "unexpected token in GetNumber()";
    }
    return token.value;
}

void TIME_SCANNER::GetSeparator() {
    TIME_TOKEN token;
    if (!GetToken(token)) throw "TIME: scanner: unexpected end of string";
    if (token.type != TIME_TOKEN_TYPE::SEPARATOR && token.type != TIME_TOKEN_TYPE::SIGN_MINUS) {
        throw "unexpected token in GetSeparator()";
    }
}

int TIME_SCANNER::GetMonth() {
    TIME_TOKEN token;
    if (!GetToken(token)) throw "TIME: scanner: unexpected end of string";
    if (token.type != TIME_TOKEN_TYPE::MONTH && token.type != TIME_TOKEN_TYPE::NUMBER) {
        throw "unexpected token in GetMonth()";
    }
    return token.value;
}

bool TIME_SCANNER::GetPoint() {
    TIME_TOKEN token;
    if (!GetToken(token)) return false;
    if (token.type == TIME_TOKEN_TYPE::POINT) return true;
    if (token.type != TIME_TOKEN_TYPE::ZULU || GetToken(token)) throw "unexpected token in GetPoint()";
    return false;
}

MILLI_AND_MICRO_SECONDS TIME_SCANNER::GetMilliAndMicroSeconds() {
    TIME_TOKEN token;
    if (!GetToken(token)) return {};
    if (token.type != TIME_TOKEN_TYPE::NUMBER) throw "unexpected token in GetMilliAndMicroSeconds()";
    std::string digits = token.text;
    digits.resize(6, '0');
    return {SaturatedValue(digits.substr(0, 3)), SaturatedValue(digits.substr(3, 3))};
}

void TIME_SCANNER::ExpectEnd() {
    TIME_TOKEN token;
    if (!GetToken(token)) return;
    if (token.type != TIME_TOKEN_TYPE::ZULU || GetToken(token)) throw "unexpected token after the time";
}
