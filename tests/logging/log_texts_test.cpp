#include "lib/baselib/logging/log_texts.h"

#include <gtest/gtest.h>

#include <ctime>

#include "lib/baselib/logging/log_tally.h"
#include "tests/kit/environment_setting.h"

namespace {

TEST(Printable, ShowsControlBytesAndLeavesTextAlone) {
    const std::pair<std::string, std::string> cases[] = {
        {"a\nORQ_MSG|ERROR|", "a\\x0AORQ_MSG|ERROR|"},
        {"\033[7mred\t\r", "\\x1B[7mred\\x09\\x0D"},
        {std::string("nul\0byte", 8), "nul\\x00byte"},
        {"M\xc3\xbcnchen \xe2\x82\xac", "M\xc3\xbcnchen \xe2\x82\xac"},  // the euro sign contains byte 0x82
        {"raw \x9b"
         "7m",
         "raw \\x9B"
         "7m"},  // U+009B alone does what escape and [ do
        {"\x1f \x7e\x7f", "\\x1F ~\\x7F"},
        {"\xc2\x80 \xc2\x9f \xc2\xa0", "\xc2\\x80 \xc2\\x9F \xc2\xa0"},
        {"\x80 \xa0", "\\x80 \xa0"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(Printable(text), shown);
}

TEST(ExecutionTimeText, NamesEachNonZeroPart) {
    EXPECT_EQ(ExecutionTimeText(400 * 86400LL + 23 * 3600 + 59 * 60 + 5),
              "execution time: 400 day(s) 23 hour(s) 59 minute(s) 5 second(s)");
    const std::pair<long long, const char*> cases[] = {{3605, "1 hour(s) 5 second(s)"},
                                                       {86400, "1 day(s)"},
                                                       {86399, "23 hour(s) 59 minute(s) 59 second(s)"},
                                                       {60, "1 minute(s)"},
                                                       {59, "59 second(s)"},
                                                       {1, "1 second(s)"},
                                                       {0, "less than 1 second"},
                                                       {-7, "less than 1 second"}};  // the clock was set back
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(ExecutionTimeText(seconds), std::string("execution time: ") + text);
}

TEST(LevelFromName, UnknownNamesSilence) {
    const char* names[] = {"TRACE",   "DEBUG",     "PARAMETER", "INFO",      "QA_WARNING",
                           "WARNING", "EXCEPTION", "ALARM",     "NO_MESSAGE"};
    for (int level = 1; level <= 9; ++level) EXPECT_EQ(LevelFromName(names[level - 1]), level);
    for (const char* name : {"", "trace", "INFO "}) EXPECT_EQ(LevelFromName(name), 10) << name;
}

TEST(LocalTime, IsThatOfTheZone) {
    const ENVIRONMENT_SETTING zone("TZ", "XYZ-2");
    tzset();
    EXPECT_EQ(LocalTimeText(1330956187), "Mon Mar  5 16:03:07 2012");
    EXPECT_EQ(LocalTimeStamp(1330956187), "2012-03-05T16:03:07");
}

TEST(LogTally, KeepsTheFirstWarningsAndTheLastErrors) {
    LOG_TALLY tally;
    for (int level = 1; level <= 4; ++level) {
        tally.AddLine(level, "said");
        tally.AddPiece(level, "said\n");
    }
    EXPECT_EQ(tally.Warnings() + tally.Errors(), 0);
    for (const int level : {5, 6, 6}) tally.AddLine(level, "twice");
    tally.AddPiece(6, "in two ");
    tally.AddPiece(6, "pieces\n");
    for (int i = 0; i < 60; ++i) tally.AddLine(6, std::to_string(i));
    EXPECT_EQ(tally.Warnings(), 64);
    const std::vector<std::string> warnings = tally.FirstWarnings();
    ASSERT_EQ(warnings.size(), 50u);
    EXPECT_EQ((std::vector<std::string>{"twice", "in two pieces", "0", "47"}),
              (std::vector<std::string>{warnings[0], warnings[1], warnings[2], warnings[49]}));
    EXPECT_EQ(tally.Errors(), 0);
    for (int i = 0; i < 25; ++i) tally.AddLine(7 + i % 2, std::to_string(i));
    EXPECT_EQ(tally.Errors(), 25);
    ASSERT_EQ(tally.LastErrors().size(), 20u);
    EXPECT_EQ(tally.LastErrors().front(), "5");
    EXPECT_EQ(tally.LastErrors().back(), "24");
}

}  // namespace
