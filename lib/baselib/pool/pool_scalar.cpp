#include "lib/baselib/pool/pool_scalar.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/errors/parse_number.h"

namespace {

/// What the reader of an integer type says. Operators' scripts look for these texts as they are, although some of them
/// name the neighbouring type.
struct INTEGER_TEXTS {
    const char* floating;
    const char* unsigned_expected;  ///< nullptr: the type has a sign
    const char* additional_character;
    const char* out_of_range;
};
constexpr INTEGER_TEXTS kBytTexts = {" BYT (no floating) value expected\n", " BYT (unsigned) value expected\n",
                                     " BYT (no additional character) value expected\n",
                                     " (value is out of range) BYT expected\n"};
constexpr INTEGER_TEXTS kInt8Texts = {" BYT (no floating) value expected\n", nullptr,
                                      " INT_8 (no additional character) value expected\n",
                                      " (value is out of range) INT_8 expected\n"};
constexpr INTEGER_TEXTS kInt16Texts = {" INT_8 (no floating) value expected\n", nullptr,
                                       " INT_8 (no additional character) value expected\n",
                                       " (value is out of range) INT_16 expected\n"};
constexpr INTEGER_TEXTS kInt32Texts = {" INT_16 (no floating) value expected\n", nullptr,
                                       " INT_32 (no additional character) value expected\n",
                                       " (value is out of range) INT_32 expected\n"};
constexpr INTEGER_TEXTS kInt64Texts = {" INT_32 (no floating) value expected\n", nullptr,
                                       " INT_64 (no additional character) value expected\n",
                                       " (value is out of range) INT_64 expected\n"};

template <class T>
void ReadInteger(POOL_ENTRY& entry, T& value, const INTEGER_TEXTS& texts) {
    const std::string token = entry.Token();
    if (token.find_first_of(".eE") != std::string::npos) {
        entry.FailToken<INVALID_PARAMETER_VALUE>(token, texts.floating);
    }
    if (texts.unsigned_expected != nullptr && (token[0] == '-' || token[0] == '+')) {
        entry.FailToken<INVALID_PARAMETER_VALUE>(token, texts.unsigned_expected);
    }
    const std::size_t first_digit = token[0] == '-' || token[0] == '+' ? 1 : 0;
    if (first_digit == token.size() || token.find_first_not_of("0123456789", first_digit) != std::string::npos) {
        entry.FailToken<INVALID_PARAMETER_VALUE>(token, texts.additional_character);
    }
    long long number = 0;
    if (ParseInteger(token, number) != PARSE_RESULT::OK || number < std::numeric_limits<T>::min() ||
        number > std::numeric_limits<T>::max()) {
        entry.FailToken<PARAMETER_OUT_OF_BOUNDS>(token, texts.out_of_range);
    }
    value = static_cast<T>(number);
}

template <class T>
void ReadReal(POOL_ENTRY& entry, T& value, PARSE_RESULT (*parse)(const std::string&, T&), const char* out_of_range,
              const char* no_number) {
    const std::string token = entry.Token();
    const PARSE_RESULT result = parse(token, value);
    if (result == PARSE_RESULT::OUT_OF_RANGE) entry.FailToken<PARAMETER_OUT_OF_BOUNDS>(token, out_of_range);
    if (result != PARSE_RESULT::OK) entry.FailToken<INVALID_PARAMETER_VALUE>(token, no_number);
}

STRING MakeString(const POOL_ENTRY& entry, const std::string& text) {
    try {
        return STRING(text);
    } catch (const ERROR_NO_MEMORY&) {
        Log() << LOGGING_LEVEL::ALARM << "parameter pool:  >> " << entry.Key() << " error in STRING processing\n";
        throw;
    }
}

/// @param digits so many significant decimal digits that the value reads back bit for bit
std::string RealText(double value, int digits) {
    char text[40];
    return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%.*g", digits, value))};
}

}  // namespace

void ReadPoolField(POOL_ENTRY& entry, bool& value) {
    const std::string token = entry.Token();
    if (token != "TRUE" && token != "FALSE") {
        entry.FailToken<INVALID_PARAMETER_VALUE>(token, " but TRUE or FALSE are expected\n");
    }
    value = token == "TRUE";
}

void ReadPoolField(POOL_ENTRY& entry, unsigned char& value) {
    ReadInteger(entry, value, kBytTexts);
}
void ReadPoolField(POOL_ENTRY& entry, signed char& value) {
    ReadInteger(entry, value, kInt8Texts);
}
void ReadPoolField(POOL_ENTRY& entry, short& value) {
    ReadInteger(entry, value, kInt16Texts);
}
void ReadPoolField(POOL_ENTRY& entry, int& value) {
    ReadInteger(entry, value, kInt32Texts);
}
void ReadPoolField(POOL_ENTRY& entry, long& value) {
    ReadInteger(entry, value, kInt64Texts);
}
void ReadPoolField(POOL_ENTRY& entry, long long& value) {
    ReadInteger(entry, value, kInt64Texts);
}

void ReadPoolField(POOL_ENTRY& entry, float& value) {
    ReadReal(entry, value, ParseFloat, " (value is out of range) FLT_6 expected\n",
             " FLT_6 (no additional character) value expected\n");
}

void ReadPoolField(POOL_ENTRY& entry, double& value) {
    ReadReal(entry, value, ParseReal, " (value is out of range) FLT_15 expected\n",
             " FLT_15 (no additional character) value expected\n");
}

void ReadPoolField(POOL_ENTRY& entry, std::string& value) {
    if (!entry.Reader().Quoted(value)) {
        entry.FailToken<INVALID_PARAMETER_VALUE>(entry.Token(), " but a string in double quotes is expected\n");
    }
}

void ReadPoolField(POOL_ENTRY& entry, STRING& value) {
    std::string text;
    ReadPoolField(entry, text);
    value = MakeString(entry, text);
}

void ReadPoolField(POOL_ENTRY& entry, TUPLE<STRING>& value) {
    std::string first;
    std::string second;
    if (!entry.Reader().Quoted(first) || !entry.Reader().Quoted(second)) {
        entry.Fail<INVALID_PARAMETER_VALUE>(" << no correct string tuple format (missing >>\"<< ?)\n");
    }
    value = {MakeString(entry, first), MakeString(entry, second)};
}

std::string PoolFieldText(bool value) {
    return value ? "TRUE" : "FALSE";
}
std::string PoolFieldText(unsigned char value) {
    return std::to_string(static_cast<unsigned>(value));
}
std::string PoolFieldText(long long value) {
    return std::to_string(value);
}

std::string PoolFieldText(float value) {
    // A signaling nan would raise the invalid operation when it is widened for printf: look at its bits only.
    if ((std::bit_cast<std::uint32_t>(value) & 0x7fffffffU) > 0x7f800000U) return "nan";
    return RealText(static_cast<double>(value), 9);
}

std::string PoolFieldText(double value) {
    if ((std::bit_cast<std::uint64_t>(value) & 0x7fffffffffffffffU) > 0x7ff0000000000000U) return "nan";
    return RealText(value, 17);
}

std::string PoolFieldText(const std::string& value) {
    if (value.find_first_of(std::string_view("\"\n\r\0", 4)) != std::string::npos) {
        LogAndThrow<INVALID_PARAMETER_VALUE>("the string >>%s<< holds a double quote, a line end or a zero byte",
                                             value.c_str());
    }
    return '"' + value + '"';
}
