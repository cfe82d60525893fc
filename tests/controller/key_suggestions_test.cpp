#include "lib/baselib/controller/key_suggestions.h"

#include <gmock/gmock.h>

#include "lib/baselib/controller/unused_words.h"

namespace {

TEST(SuggestedKey, AllowsMoreEditsForLongerKeys) {
    const std::vector<std::string> known = {"DEM", "pid", "log_pp", "X_EARTH", "Y_EARTH", "MASTER_POOL", "LOOKS_RG"};
    struct CASE {
        const char *word, *key, *key_when_surely_wrong;
    };
    const CASE cases[] = {
        {"MASTER_POOL", "", ""},                        // known
        {"MASTER_POL", "MASTER_POOL", "MASTER_POOL"},   // a letter lost
        {"MATSER_PIOL", "MASTER_POOL", "MASTER_POOL"},  // neighbours exchanged, a letter replaced
        {"MSTR_POL", "", ""},                           // three letters lost
        {"lgo_pp", "log_pp", "log_pp"},
        {"lo_p", "", ""},                   // two edits in six letters
        {"Z_EARTH", "X_EARTH", "X_EARTH"},  // equally close to two: the first
        {"dem", "DEM", "DEM"},
        {"DEN", "", "DEM"},        // short keys: capitals and small letters only
        {"#MASTER_POOL", "", ""},  // a comment
        {"DEM=dem.ras", "DEM", "DEM"},
        {"\xEF\xBB\xBFMASTER_POOL", "MASTER_POOL", "MASTER_POOL"},  // a byte order mark
    };
    for (const CASE& c : cases) {
        EXPECT_EQ(SuggestedKey(c.word, known), c.key) << c.word;
        EXPECT_EQ(SuggestedKey(c.word, known, true), c.key_when_surely_wrong) << c.word;
    }
}

TEST(KeyWithPiece, WantsWholePiecesOfFourLettersOrMore) {
    const std::vector<std::string> keys = {"DEM_VALID", "SIMU_PHASE", "SHIFT_MATRICES_SUBSAMPLING_RG"};
    for (const char* word : {"PHASE", "phase"}) EXPECT_EQ(KeyWithPiece(word, keys), "SIMU_PHASE");
    EXPECT_EQ(KeyWithPiece("MATRICES_SUBSAMPLING", keys), "SHIFT_MATRICES_SUBSAMPLING_RG");
    for (const char* word : {"DEM", "HASE", "PHASES"}) EXPECT_EQ(KeyWithPiece(word, keys), "") << word;
}

TEST(UnusedWords, TellWhatNobodyReads) {
    GIVEN_WORDS words;
    words.arguments = {"velmora",   "-pfc", "x",    "-h",    "-DEM",        "a",        "-DEM",         "b",
                       "-LOOKS_RG", "-1",   "-FAR", "-1e-6", "DEM=dem.ras", "file.pcf", "-WRITE_SHIFTS"};
    words.file_keys = {"#LOOKS_RG", "PHASE", "DEM", "FOREIGN", "DEM", "FOREIGN", "SIMU_FASE", "-5"};
    words.file_path = "scene.pcf";
    words.known_keys = {"DEM", "LOOKS_RG", "SIMU_PHASE", "WRITE_SHIFTS", "pcf"};
    LOOKUP_RECORD record{.used_arguments = {6}, .asked_with_file = {"DEM"}, .found = {"DEM"}};
    using testing::ElementsAre;
    std::vector<std::string> lines = {
        "unknown parameter pfc: is pcf meant?",
        "argument -h is not used: --help, as the only argument, tells the keys",
        "argument -DEM is not used: a later -DEM wins",
        "argument -LOOKS_RG is not used: this run has no use for it",
        "argument -FAR is not used",
        "argument DEM=dem.ras is not used: is -DEM dem.ras meant?",
        "argument file.pcf is not used: is -pcf file.pcf meant?",
        "argument -WRITE_SHIFTS is not used: no value follows it (a flag needs one, too)"};
    EXPECT_EQ(UnusedArgumentLines(words, record, false), lines);
    lines.erase(lines.begin() + 2, lines.begin() + 4);  // known keys with values: a lookup may still use them
    EXPECT_EQ(UnusedArgumentLines(words, record, true), lines);
    EXPECT_THAT(
        DoubtfulFileKeyLines(words, record),
        ElementsAre("unknown parameter PHASE: is SIMU_PHASE meant?",
                    "scene.pcf: key DEM stands 2 times, and the order of reading decides which line counts: keep one",
                    "unknown parameter SIMU_FASE: is SIMU_PHASE meant?"));
    EXPECT_EQ(UnusedFileKeysLine(words, record),
              "keys of scene.pcf that this run did not use: PHASE FOREIGN SIMU_FASE");
    record.found.insert("SIMU_PHASE");
    EXPECT_THAT(DoubtfulFileKeyLines(words, record), testing::SizeIs(2));  // a piece of a key that somebody gave
}

}  // namespace
