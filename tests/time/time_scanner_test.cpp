#include "time/time_scanner.h"

#include <gtest/gtest.h>

#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "tests/kit/log_capture.h"
#include "time/met_scanner.h"
#include "time/utc_scanner.h"

namespace {

using testing::HasSubstr;

/// A text in the scanner's own form, and others that mean the same.
using GOOD = std::pair<const char*, std::vector<const char*>>;

TEST(UtcScanner, ReadsEveryForm) {
    const GOOD good[] = {
        {"05-MAR-2012/14:03:07.123456",
         {"05-MAR-2012/14:03:07.123456", "05-MAR-2012 14:03:07.123456", "2012-03-05/14:03:07.123456",
          "2012-03-05T14:03:07.123456", "2012-03-05T14:03:07.123456789012345678901234567890"}},
        {"05-MAR-2012/14:03:07.000000",
         {"20120305T140307", "2012-03-05T14:03:07.", "05-003-2012/14:03:07", "05-MAR-2012/14:03:07Z \t",
          "mar  5 14:03:07 2012"}},  // upper-cased first
        {"05-MAR-2012/14:03:07.050000", {"2012-03-05T14:03:07.050"}},
        // A line ends the text.
        {"05-MAR-2012/14:03:07.250000", {"2012-03-05T14:03:07.25Z", "2012-03-05T14:03:07.25 \n anything"}},
        {"31-DEC-2016/23:59:60.000000", {"31-DEC-2016/23:59:60.000000"}},
        {"30-JUN-2012/23:59:62.000000", {"30-JUN-2012/23:59:62"}},
        {"29-FEB-2000/00:00:00.000000", {"29-FEB-2000/00:00:00"}},
        {"05-MAR-9999/23:59:59.000000", {"mar  5 23:59:59 9999z"}},
    };
    for (const auto& [expected, texts] : good)
        for (const char* text : texts) EXPECT_EQ(UTC_SCANNER().Scan(text).ToText(), expected) << text;
    const std::string longest = "2012-03-05T14:03:07." + std::string(128, '5') + std::string(129, ' ');
    EXPECT_EQ(UTC_SCANNER().Scan(longest).ToText(), "05-MAR-2012/14:03:07.555555");
    const std::string zero_byte("2012-03-05T14:03:07\0x", 21);  // it ends the text
    EXPECT_EQ(UTC_SCANNER().Scan(zero_byte).ToText(), "05-MAR-2012/14:03:07.000000");
}

/// A part of the log, and the texts that lead to it.
struct BAD {
    const char* logged;
    std::vector<std::string> texts;
    const char* error = "data error\n";
};

template <class SCANNER, size_t N>
void ExpectRefused(const BAD (&cases)[N]) {
    for (const BAD& c : cases) {
        for (const std::string& text : c.texts) {
            SCOPED_TRACE(text);
            EXPECT_THAT(ErrorAndLogOf([&] { (void)SCANNER().Scan(text); }),
                        AllOf(testing::StartsWith(c.error), HasSubstr(c.logged), HasSubstr("Error during scan of: ")));
        }
    }
}

TEST(UtcScanner, RefusesWithTheReason) {
    const std::string digits_129(129, '1');
    const BAD kBad[] = {
        {"UTC_SCANNER: invalid or unsupported format: \n", {""}},
        {"UTC_SCANNER: invalid or unsupported format: 12.5\n", {"12.5"}},
        {"UTC_SCANNER: TIME: scanner: unhandled character: 05-mar-2012/14:03:07\n", {"05-mar-2012/14:03:07"}},
        {"TIME_SCANNER: can not convert >> JAM << to month\n", {"05-JAM-2012/14:03:07"}, "wrong argument\n"},
        {"UTC_SCANNER: invalid hour: 24\n", {"05-MAR-2012/24:03:07"}},
        {"UTC_SCANNER: invalid minute: 60\n", {"05-MAR-2012/14:60:07"}},
        {"UTC_SCANNER: invalid second: 63\n", {"05-MAR-2012/23:59:63"}},
        {"UTC_SCANNER: invalid leap second: 60\n", {"31-DEC-2016/23:58:60"}},
        {"UTC_SCANNER: invalid leap second: 62\n", {"dec 31 22:59:62 2016"}},
        {"UTC_SCANNER: Invalid date: 29.2.1900\n", {"29-FEB-1900/00:00:00"}},
        {"UTC_SCANNER: Invalid date: 0.3.2012\n", {"00-MAR-2012/14:03:07"}},
        {"UTC_SCANNER: Invalid date: 31.4.2012\n", {"apr 31 14:03:07 2012"}},
        {"UTC_SCANNER: invalid year: 10000\n", {"MAR 05 14:03:07 10000"}},
        {"UTC_SCANNER: Invalid date: 5.13.2012\n", {"2012-13-05T14:03:07"}},
        {"UTC_SCANNER: invalid year: 2147483647\n", {"MAR 05 14:03:07 99999999999999999999"}},
        {"unexpected token in GetPoint()",
         {"05-MAR-2012/14:03:07+01:00", "05-MAR-2012/14:03:07Z 5", "05-MAR-2012/14:03:07+"}},
        {"unexpected token after the time",
         {"05-MAR-2012/14:03:07.5+01:00", "05-MAR-2012/14:03:07.5Z5", "05-MAR-2012/14:03:07.5+",
          "MAR 05 14:03:07 2012 5"}},
        {"unexpected token in GetMilliAndMicroSeconds()", {"05-MAR-2012/14:03:07.:"}},
        {"unexpected token in GetMonth()", {"05-:::-2012/14:03:07"}},
        {"unexpected token in GetSeparator()", {"05-MAR-2012/14.03:07"}},
        {"TIME: scanner: unexpected end of string", {"    ", "MAR 05 14", "MAR 05 14:03:07"}},
        {"invalid or unsupported format",
         {"MAR-05 14:03:07 2012", "05/MAR-2012/14:03:07", "05-MAR/2012/14:03:07", "2012/03-05/14:03:07",
          "2012-03/05/14:03:07", "2012-03-05/14:03.07", "20120305T1403070", "20120305/140307", "2012-MAR-05/14:03:07",
          "2012-03-05/14.03:07", "2012-03-05 14:03:07", "05-MAR-2012T14:03:07"}},
        {"found token: token_separator\n", {"05-MAR-2012/:14:03:07"}},
        {"TIME: scanner: token too long", {"2012-03-05T14:03:07." + digits_129}},
        {"TIME: scanner: unhandled character", {"2012-03-05T14:03:07\xc3\xa4"}},
    };
    ExpectRefused<UTC_SCANNER>(kBad);
}

TEST(TimeScanner, TellsItsTokensAndTakesOneBack) {
    const char* texts[] = {"sign_minus", "sign_plus", "white", "number", "point", "separator", "month", "zulu"};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(TokenTypeText(static_cast<TIME_TOKEN_TYPE>(i)), std::string("token_") + texts[i]);
    }
    for (const int no_type : {-1, 8}) {
        EXPECT_EQ(TextThrownBy([&] { (void)TokenTypeText(static_cast<TIME_TOKEN_TYPE>(no_type)); }),
                  "can not convert unregistered tokentype to string");
    }
    TIME_SCANNER scanner(" 7\t99999999999");
    TIME_TOKEN token;
    ASSERT_TRUE(scanner.GetToken(token));
    scanner.UngetToken(token);
    EXPECT_EQ(TextThrownBy([&] { scanner.UngetToken(token); }), "TIME: scanner: internal error unget buffer overflow");
    EXPECT_EQ(scanner.GetSign(), '+') << "the number stays";
    EXPECT_EQ(scanner.GetNumber(), 7);
    EXPECT_EQ(scanner.GetMonth(), std::numeric_limits<int>::max());
    EXPECT_EQ(scanner.GetSign(), '+');
    EXPECT_FALSE(scanner.GetPoint());
    EXPECT_FALSE(TIME_SCANNER("Z").GetPoint());
    EXPECT_EQ(scanner.GetMilliAndMicroSeconds().milliseconds, 0);
    scanner.ExpectEnd();
    EXPECT_EQ(TextThrownBy([&] { (void)scanner.GetMonth(); }), "TIME: scanner: unexpected end of string");
    EXPECT_EQ(TextThrownBy([] { (void)TIME_SCANNER("+").GetMonth(); }), "unexpected token in GetMonth()");
}

TEST(MetScanner, ReadsAndRefuses) {
    const std::pair<const char*, const char*> good[] = {
        {"+0012/03:04:05.006007", "+0012/03:04:05.006007"},
        {" + 12 - 3 T 4 \\ 5 . 5 ", "+0012/03:04:05.500000"},
        {"9999/23:59:59.999999Z", "+9999/23:59:59.999999"},
        {"-0001/02:03:04Z", "-0001/02:03:04.000000"},
    };
    for (const auto& [text, expected] : good) EXPECT_EQ(MET_SCANNER().Scan(text).ToText(), expected) << text;

    const BAD kBad[] = {
        {"MET_SCANNER: TIME: scanner: unexpected end of string: \n", {""}},
        {"MET_SCANNER: TIME: scanner: unexpected end of string: 0001\n", {"0001"}},
        {"MET_SCANNER: can not represent MET value: 10000/00:00:00\n", {"10000/00:00:00"}},
        {"MET_SCANNER: hours are outside 0..23", {"0001/24:00:00"}},
        {"MET_SCANNER: unexpected token in GetSeparator()", {"0001.02:03:04", "0001/02.03:04", "0001/02:03.04"}},
        {"MET_SCANNER: seconds are outside 0..59", {"0001/00:00:60"}},
        {"unexpected token after the time", {"0001/00:00:00.5 5"}},
        {"found token: token_sign_plus\n", {"++1/00:00:00"}},
        {"MET_SCANNER: unexpected letters in a mission elapsed time: MARS/00:00:00\n", {"MARS/00:00:00"}},
        {"MET_SCANNER: unexpected token in GetNumber(): 0001/MAR:00:00\n", {"0001/MAR:00:00"}},
    };
    ExpectRefused<MET_SCANNER>(kBad);

    MISSION_ELAPSED_TIME partly;
    EXPECT_EQ(TextThrownBy([&] { MET_SCANNER().ScanFields("-0007/05:99:00", partly); }), "minutes are outside 0..59");
    EXPECT_EQ(partly.ToText(), "-0007/05:00:00.000000") << "fields not reached stay 0";
}

}  // namespace
