#include "companions/output_set.h"

#include <gtest/gtest.h>

#include <csignal>

#include "companions/companion_error.h"
#include "companions/temporary_names.h"
#include "tests/kit/in_process.h"
#include "tests/kit/temporary_folder.h"

namespace fs = std::filesystem;

namespace {

class OutputSet : public ::testing::Test {
  protected:
    [[nodiscard]] std::string Path(const std::string& name) const { return folder_.Path(name); }
    [[nodiscard]] std::string Read(const std::string& name) const { return Content(Path(name)); }
    [[nodiscard]] long Files() const { return std::distance(fs::directory_iterator(Path("")), {}); }

    TEMPORARY_FOLDER folder_;
};

TEST_F(OutputSet, ReplacesAllFilesTogetherAndKeepsPermissions) {
    Write(Path("a"), "old a");
    fs::permissions(Path("a"), fs::perms::owner_all);
    {
        OUTPUT_SET outputs(true);
        Write(outputs.Add(Path("a")), "new a");
        Write(outputs.Add(Path("b")), "new b");
        EXPECT_EQ(Read("a"), "old a");
        outputs.Commit();
    }
    EXPECT_EQ(Read("a") + Read("b"), "new anew b");
    EXPECT_EQ(fs::status(Path("a")).permissions(), fs::perms::owner_all);
    EXPECT_EQ(Files(), 2);
}

/// The last of the files cannot be put in place: a folder has taken its name meanwhile.
TEST_F(OutputSet, TakesBackWhatIsInPlaceWhenALaterFileFails) {
    for (const bool force : {false, true}) {
        SCOPED_TRACE(force);
        if (force) Write(Path("a"), "old a");
        {
            OUTPUT_SET outputs(force);
            outputs.AddFolder(Path("run"));
            Write(outputs.Add(Path("a")), "new a");
            Write(outputs.Add(Path("run/b")), "new b");
            Write(outputs.Add(Path("c")), "new c");
            fs::create_directory(Path("c"));
            Write(Path("c/mine"), "");
            EXPECT_THROW(outputs.Commit(), COMPANION_ERROR);
        }
        EXPECT_EQ(Read("a"), force ? "old a" : "");
        EXPECT_FALSE(fs::exists(Path("run")));
        EXPECT_EQ(Files(), force ? 2 : 1);
        fs::remove_all(Path("c"));
    }
}

TEST_F(OutputSet, ASignalLeavesNoTemporaryFile) {
    EXPECT_EQ(-SIGTERM, InProcess([this] {
        InstallTemporaryFileRemoval();
        OUTPUT_SET outputs(false);
        Write(outputs.Add(Path("a")), "new a");
        raise(SIGTERM);
    }));
    EXPECT_EQ(Files(), 0);
}

}  // namespace
