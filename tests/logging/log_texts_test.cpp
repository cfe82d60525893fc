#include "lib/baselib/logging/log_texts.h"

#include <gtest/gtest.h>

namespace {

TEST(Printable, ShowsControlBytesAndLeavesTextAlone) {
    struct CASE {
        std::string text, shown;
    };
    const CASE cases[] = {
        {"a\nORQ_MSG|ERROR|", "a\\x0AORQ_MSG|ERROR|"},
        {"\033[7mred\t\r", "\\x1B[7mred\\x09\\x0D"},
        {std::string("nul\0byte", 8), "nul\\x00byte"},
        {"M\xc3\xbcnchen \xe2\x82\xac", "M\xc3\xbcnchen \xe2\x82\xac"},  // the euro sign contains byte 0x82
        {"raw \x9b"
         "7m",
         "raw \\x9B"
         "7m"},  // U+009B alone does what escape and [ do
    };
    for (const CASE& c : cases) EXPECT_EQ(Printable(c.text), c.shown);
}

TEST(ExecutionTimeText, NamesEachNonZeroPart) {
    EXPECT_EQ(ExecutionTimeText(400 * 86400LL + 23 * 3600 + 59 * 60 + 5),
              "execution time: 400 day(s) 23 hour(s) 59 minute(s) 5 second(s)");
    EXPECT_EQ(ExecutionTimeText(3605), "execution time: 1 hour(s) 5 second(s)");
    EXPECT_EQ(ExecutionTimeText(-7), "execution time: less than 1 second") << "the clock was set back";
}

TEST(LevelFromName, UnknownNamesSilence) {
    EXPECT_EQ(LevelFromName("QA_WARNING"), 5);
    for (const char* name : {"", "trace", "INFO "}) EXPECT_EQ(LevelFromName(name), 10) << name;
}

}  // namespace
