#include "lib/baselib/controller/control_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <thread>

#include "tests/kit/temporary_folder.h"

namespace {

class ControlFileTest : public testing::Test {
  protected:
    std::string Entries() {
        std::string text;
        while (const auto entry = file_.NextEntry()) text += "[" + entry->key + "=" + entry->value + "]";
        return text;
    }

    WORKING_FOLDER folder_;
    CONTROL_FILE file_;
};

TEST_F(ControlFileTest, SplitsLinesIntoTwoWords) {
    const std::string full(1020, 'v');
    const std::pair<std::string, std::string> cases[] = {
        {"KEY value and more\n\tOTHER \t x", "[KEY=value][OTHER=x]"},
        {"\n  \nKEY v\r\n", "[=][=][KEY=v]"},
        {std::string("KEY\0x y\nB c\n", 12), "[KEY=][B=c]"},
        // A line of 1024 characters is whole with its end in the next read; a longer one goes on as a line of its own.
        {"KEY " + full + "\nB c\n", "[KEY=" + full + "][=][B=c]"},
        {"KEY " + full + "REST w\n", "[KEY=" + full + "][REST=w]"}};
    for (const auto& [content, entries] : cases) {
        Write("pcf", content);
        ASSERT_TRUE(file_.Open("pcf"));
        EXPECT_EQ(Entries(), entries);
    }
}

TEST_F(ControlFileTest, TellsMissingFilesFromUnreadableOnesAndTakesPipes) {
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const std::pair<const char*, const char*> cases[] = {
        {"nothing", ""},
        {"nothing/below", ""},
        {".", "Is a directory"},
        {"/dev/zero", "it has more than 16777216 bytes"},
        {"/proc/self/mem", "Input/output error"},  // a read error is not the end of the file
        {"pipe", "nobody wrote into it for 0 s"}};
    for (const auto& [path, problem] : cases) {
        EXPECT_FALSE(file_.Open(path, 0));
        EXPECT_EQ(file_.Problem(), problem) << path;
    }
    std::thread writer([] { Write("pipe", "A 1\nB 2\n"); });
    ASSERT_TRUE(file_.Open("pipe"));
    writer.join();
    EXPECT_EQ(file_.NextEntry()->key, "A");
    EXPECT_THAT(file_.Keys(), testing::ElementsAre("A", "B"));
    EXPECT_EQ(Entries(), "[B=2]") << "asking for the keys leaves the reading position";
    file_.Rewind();
    EXPECT_EQ(Entries(), "[A=1][B=2]");
}

}  // namespace
