#include "lib/baselib/logging/log_texts.h"

#include <gtest/gtest.h>

namespace {

TEST(Printable, ShowsControlBytesAndLeavesTextAlone) {
    struct CASE {
        std::string text, shown;
    };
    const CASE cases[] = {
        {"plain %s %n text", "plain %s %n text"},
        {"a\nORQ_MSG|ERROR|", "a\\x0AORQ_MSG|ERROR|"},
        {"\033[7mred\t\r", "\\x1B[7mred\\x09\\x0D"},
        {std::string("nul\0byte", 8), "nul\\x00byte"},
        {"\x7f", "\\x7F"},
        {"M\xc3\xbcnchen \xe2\x82\xac", "M\xc3\xbcnchen \xe2\x82\xac"},  // the euro sign contains byte 0x82
        {"csi \xc2\x9b"
         "7m",
         "csi \xc2\\x9B"
         "7m"},  // U+009B does what escape and [ do
        {"raw \x9b"
         "7m",
         "raw \\x9B"
         "7m"},
    };
    for (const CASE& c : cases) EXPECT_EQ(Printable(c.text), c.shown);
}

TEST(ExecutionTimeText, NamesEachNonZeroPart) {
    // Every combination of parts, from their definition.
    for (int mask = 0; mask < 16; ++mask) {
        std::string expected = "execution time:";
        long long seconds = 0;
        if ((mask & 8) != 0) expected += " 400 day(s)", seconds += 400 * 86400;
        if ((mask & 4) != 0) expected += " 23 hour(s)", seconds += 23 * 3600;
        if ((mask & 2) != 0) expected += " 59 minute(s)", seconds += 59 * 60;
        if ((mask & 1) != 0) expected += " 5 second(s)", seconds += 5;
        if (mask == 0) expected += " less than 1 second";
        EXPECT_EQ(ExecutionTimeText(seconds), expected);
    }
    EXPECT_EQ(ExecutionTimeText(3605), "execution time: 1 hour(s) 5 second(s)");
    EXPECT_EQ(ExecutionTimeText(-7), "execution time: less than 1 second") << "the clock was set back";
}

TEST(LocalTimeText, IsTheLibrarysFormWithoutLineEnd) {
    for (const std::time_t time : {std::time_t{0}, std::time_t{1'700'000'000}, std::time_t{1'704'067'200}}) {
        std::string expected = std::ctime(&time);
        expected.pop_back();
        EXPECT_EQ(LocalTimeText(time), expected);
    }
}

TEST(LevelFromName, UnknownNamesSilence) {
    EXPECT_EQ(LevelFromName("TRACE"), 1);
    EXPECT_EQ(LevelFromName("QA_WARNING"), 5);
    EXPECT_EQ(LevelFromName("NO_MESSAGE"), 9);
    for (const char* name : {"", "trace", "INFO ", "VERBOSE", "4"}) EXPECT_EQ(LevelFromName(name), 10) << name;
}

}  // namespace
