#include "lib/baselib/controller/key_suggestions.h"

#include <gtest/gtest.h>

namespace {

TEST(SuggestedKey, AllowsMoreEditsForLongerKeys) {
    const std::vector<std::string> known = {"DEM", "pid", "log_pp", "X_EARTH", "Y_EARTH", "MASTER_POOL", "LOOKS_RG"};
    struct CASE {
        const char *word, *key;
    };
    const CASE cases[] = {
        {"MASTER_POOL", ""},             // known
        {"MASTER_POL", "MASTER_POOL"},   // a letter lost
        {"MATSER_PIOL", "MASTER_POOL"},  // neighbours exchanged, a letter replaced
        {"MSTR_POL", ""},                // three letters lost
        {"lgo_pp", "log_pp"},
        {"lo_p", ""},            // two edits in six letters
        {"Z_EARTH", "X_EARTH"},  // equally close to two: the first
        {"dem", "DEM"},
        {"DEN", ""},           // short keys: capitals and small letters only
        {"#MASTER_POOL", ""},  // a comment
    };
    for (const CASE& c : cases) EXPECT_EQ(SuggestedKey(c.word, known), c.key) << c.word;
}

}  // namespace
