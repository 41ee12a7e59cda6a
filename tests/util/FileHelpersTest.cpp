// Paths and their parts, the making of folders, the temporary folder and file times.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/basFileTime.h"
#include "support/ScopedEnv.h"
#include "support/TempDir.h"
#include "util/basTempPath.h"
#include "util/mdlFileExist1.h"

namespace morvane::test {
namespace {
namespace fs = std::filesystem;

TEST(PathPartsTest, NameFolderAndExtension) {
    EXPECT_EQ(GetFileNamePart("/data/a/決算書.2024.pdf"), "決算書.2024.pdf");
    EXPECT_EQ(GetFileNamePart("/data/a/決算書.2024.pdf", true), "決算書.2024");
    EXPECT_EQ(GetFileNamePart("/data/noext", true), "noext");
    EXPECT_EQ(GetFileNamePart("/data/"), "");
    // A backslash is part of a name on this platform.
    EXPECT_EQ(GetFileNamePart("/data/a\\b.txt"), "a\\b.txt");
    EXPECT_EQ(GetParentPath("/data/a/b.txt"), "/data/a");
    EXPECT_EQ(GetParentPath("b.txt"), "b.txt");
    EXPECT_EQ(StripTrailingBackslash("/data/a/"), "/data/a");
}

TEST(PathPartsTest, ExistenceOfFilesAndFolders) {
    TempDir dir;
    const std::string file = (dir.Path() / "f.txt").string();
    std::ofstream(file) << "x";
    EXPECT_TRUE(FileExists(file));
    EXPECT_TRUE(FileExists("  " + file + " "));
    EXPECT_TRUE(FileExists(dir.Path().string()));  // a folder counts
    EXPECT_FALSE(FileExists("   "));
    EXPECT_FALSE(FileExists((dir.Path() / "none").string()));
    EXPECT_TRUE(FolderExists(dir.Path().string()));
    EXPECT_FALSE(FolderExists(file));
    EXPECT_FALSE(FolderExists(""));
}

TEST(MakePathTest, CreatesEveryMissingParent) {
    TempDir dir;
    const std::string deep = (dir.Path() / "a" / "b" / "c").string();
    EXPECT_TRUE(MakePath(deep));
    EXPECT_TRUE(FolderExists(deep));
    EXPECT_TRUE(MakePath(deep + "/"));  // already there, trailing separator
    EXPECT_FALSE(MakePath(""));
    // A file in the way is a failure, not a crash.
    std::ofstream((dir.Path() / "file").string()) << "x";
    EXPECT_FALSE(MakePath((dir.Path() / "file" / "sub").string()));
}

TEST(TempFolderTest, EndsInTheSeparatorAndRespectsTheBuffer) {
    TempDir dir;
    const ScopedEnv tmp("TMPDIR", dir.Path().string());
    const std::string folder = GetTempFolder(1024);
    EXPECT_EQ(folder, dir.Path().string() + "/");
    EXPECT_EQ(GetTempFolder(static_cast<std::int32_t>(folder.size())), "");
}

TEST(FileTimeTest, ModifiedTimeChangedAloneToTheSecond) {
    TempDir dir;
    const std::string file = (dir.Path() / "t.bin").string();
    std::ofstream(file) << "x";
    DateValue created, accessed, modified;
    ASSERT_EQ(GetFileTimes(file, created, accessed, modified), 1);
    const DateValue wanted = *DateValue::Parse("2021/02/03 04:05:06");
    ASSERT_EQ(SetFileTimes(file, created, accessed, wanted), 1);
    DateValue c2, a2, m2;
    ASSERT_EQ(GetFileTimes(file, c2, a2, m2), 1);
    EXPECT_EQ(m2.StampText(), "2021/02/03 04:05:06");
    EXPECT_EQ(a2.StampText(), accessed.StampText());
    // A zero date leaves its time alone.
    ASSERT_EQ(SetFileTimes(file, DateValue(), DateValue(), DateValue()), 1);
    ASSERT_EQ(GetFileTimes(file, c2, a2, m2), 1);
    EXPECT_EQ(m2.StampText(), "2021/02/03 04:05:06");

    EXPECT_EQ(GetFileTimes((dir.Path() / "none").string(), c2, a2, m2), 0);
    EXPECT_EQ(SetFileTimes((dir.Path() / "none").string(), c2, a2, wanted), 0);
}

}  // namespace
}  // namespace morvane::test
