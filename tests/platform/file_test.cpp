#include "platform/file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace vrel {
namespace {

// A folder of its own for each test, gone afterwards.
class FileTest : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/vrel_file_XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder_ = name;
    }
    void TearDown() override { ASSERT_EQ(std::system(("rm -r " + folder_).c_str()), 0); }

    std::string Path(const char* name) const { return folder_ + "/" + name; }

    std::string Make(const char* name, const std::string& text) const {
        File out(Path(name).c_str(), "w");
        EXPECT_TRUE(out.Write(text.data(), text.size()));
        EXPECT_TRUE(out.Close());
        return Path(name);
    }

    std::string folder_;
};

TEST_F(FileTest, AFileThatIsNotThereIsFalse) {
    File none(Path("none").c_str(), "r");
    EXPECT_FALSE(none);
    char line[8] = "old";
    std::string text = "old";
    EXPECT_FALSE(none.ReadLine(line, sizeof line));
    EXPECT_STREQ(line, "");
    EXPECT_FALSE(none.ReadLine(&text));
    EXPECT_EQ(text, "");
    EXPECT_EQ(none.Read(line, sizeof line), 0U);
    EXPECT_FALSE(none.WriteText("x"));
    EXPECT_FALSE(none.Print("%d", 1));
    EXPECT_FALSE(none.Seek(0));
    EXPECT_EQ(none.Size(), -1);
    EXPECT_FALSE(none.Close());
}

TEST_F(FileTest, ADirectoryDoesNotOpen) {
    EXPECT_FALSE(File(folder_.c_str(), "r"));
    EXPECT_FALSE(File(folder_.c_str(), "w"));
}

TEST_F(FileTest, LongLinesComeInParts) {
    File in(Make("lines", "abcdefgh\nij").c_str(), "r");
    char line[5];
    std::string parts;
    while (in.ReadLine(line, sizeof line))
        parts += std::string(line) + "|";
    EXPECT_EQ(parts, "abcd|efgh|\n|ij|");
    EXPECT_FALSE(in.ReadLine(line, sizeof line));
    EXPECT_FALSE(in.ReadLine(line, 0));
}

TEST_F(FileTest, LinesUpToALimitComeWhole) {
    const std::string big(File::LONGEST_LINE - 2, 'x');
    File in(Make("lines", "\n" + big + "\r\n" + big + "xyz\nlast").c_str(), "r");
    std::string line;
    EXPECT_TRUE(in.ReadLine(&line));
    EXPECT_EQ(line, "\n");
    EXPECT_TRUE(in.ReadLine(&line));
    EXPECT_EQ(line, big + "\r\n");
    EXPECT_TRUE(in.ReadLine(&line));
    EXPECT_EQ(line, big + "xy");
    EXPECT_TRUE(in.ReadLine(&line));
    EXPECT_EQ(line, "z\n");
    EXPECT_TRUE(in.ReadLine(&line));
    EXPECT_EQ(line, "last");
    EXPECT_FALSE(in.ReadLine(&line));
}

TEST_F(FileTest, NulBytesAreKeptInLines) {
    const std::string text("a\0b\nc", 5);
    File in(Make("nul", text).c_str(), "r");
    std::string line;
    EXPECT_TRUE(in.ReadLine(&line));
    EXPECT_EQ(line, text.substr(0, 4));
}

TEST_F(FileTest, SeekReadAndSize) {
    File in(Make("bytes", "0123456789").c_str(), "rb");
    char bytes[16];
    EXPECT_TRUE(in.Seek(7));
    EXPECT_EQ(in.Size(), 10);
    EXPECT_EQ(in.Read(bytes, sizeof bytes), 3U);
    EXPECT_EQ(bytes[0], '7');
    EXPECT_FALSE(in.Seek(-1));
}

TEST_F(FileTest, AFullDiskShows) {
    if (!FileExists("/dev/full"))
        GTEST_SKIP() << "no /dev/full here";
    File out("/dev/full", "w");
    ASSERT_TRUE(out);
    out.WriteText("text");
    EXPECT_FALSE(out.Flush());
    EXPECT_FALSE(out.Close());
}

TEST_F(FileTest, MovingLeavesOneOwner) {
    File first(Make("a", "a").c_str(), "r");
    File second(std::move(first));
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): the state after a move is what is tested
    EXPECT_TRUE(second);
    first = std::move(second);
    std::string line;
    EXPECT_TRUE(first.ReadLine(&line));
    EXPECT_EQ(line, "a");
}

TEST_F(FileTest, DeleteAndRename) {
    const std::string old_name = Make("old", "x");
    const std::string new_name = Path("new");
    EXPECT_TRUE(RenameFile(old_name.c_str(), new_name.c_str()));
    EXPECT_FALSE(FileExists(old_name.c_str()));
    EXPECT_TRUE(FileExists(new_name.c_str()));
    EXPECT_TRUE(DeleteFile(new_name.c_str()));
    EXPECT_FALSE(DeleteFile(new_name.c_str()));
    EXPECT_FALSE(RenameFile(old_name.c_str(), new_name.c_str()));
    EXPECT_FALSE(DeleteFile(folder_.c_str())) << "a directory isn't deleted";
}

// A watch for overflow stands behind this: a file system keeps times up to the year 2446 or far beyond.
TEST_F(FileTest, StampsTellAnyTimesApart) {
    const std::string name = Make("dated", "x");
    FileStamp stamps[3];
    const time_t years[3] = {0, 15'000'000'000, 15'000'000'001};
    for (int i = 0; i < 3; i++) {
        const timespec times[2] = {{years[i], 0}, {years[i], 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, name.c_str(), times, 0), 0);
        ASSERT_TRUE(ReadFileStamp(name.c_str(), &stamps[i]));
        EXPECT_TRUE(SameFile(stamps[i], stamps[0]));
    }
    EXPECT_FALSE(stamps[0] == stamps[1]);
    EXPECT_FALSE(stamps[1] == stamps[2]);
}

}  // namespace
}  // namespace vrel
