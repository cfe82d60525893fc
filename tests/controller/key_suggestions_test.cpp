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
        {"MASTER_POOOL", "MASTER_POOL"},
        {"master_pool", "MASTER_POOL"},
        {"Mastr_Pol", "MASTER_POOL"},
        {"MSTR_POL", ""},  // three letters lost
        {"LOKS_R", "LOOKS_RG"},
        {"log_p", "log_pp"},
        {"LOG_PP", "log_pp"},
        {"lgo_pp", "log_pp"},
        {"lo_p", ""},            // two edits in six letters
        {"Z_EARTH", "X_EARTH"},  // equally close to two: the first
        {"dem", "DEM"},
        {"DEN", ""},  // short keys: capitals and small letters only
        {"PID", "pid"},
        {"1e-6", ""},
        {"#MASTER_POOL", ""},     // a comment
        {"GAMMA_THRESHOLD", ""},  // another program's
        {"", ""},
    };
    for (const CASE& c : cases) EXPECT_EQ(SuggestedKey(c.word, known), c.key) << c.word;
    EXPECT_EQ(SuggestedKey("DEN", {}), "");
}

}  // namespace
